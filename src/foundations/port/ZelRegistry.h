// Options stored beside the command line, in a text file:
//
//   # a comment, as a line that begins with ;
//   -errorlevel = 2             of every program
//   [oqlserver]                 from here on: of the program with this file name
//   -logdir = /var/log/net      blanks around name and value don't count
//   -title  = " kept "          nor do one pair of double quotes
//   -verbose                    a flag: its value is empty
//
// A program's own section wins over the lines before any section, and comes first.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "foundations/port/ZelExport.h"

// Adds the pairs for `service` to `pairs`. 1; E_RCOpenFailed, unreported, when there is no such file;
// E_RCBadValue when lines were unusable: each is reported and passed over.
QUINTOR_API int ZelReadRegistry(const char *path, const char *service,
                                std::vector<std::pair<std::string, std::string>> &pairs);
