// The catalogue of texts that differ between products and languages.
//
// A catalogue is a text file, one message a line: the set's number, the message's number and the text,
// parted by single blanks. In the text \n is a line feed and \\ a backslash. Lines that begin with # and
// empty ones don't count.
//
//   # product
//   1 1 Network Store
//
// Threads: any.
#pragma once

#include <map>
#include <string>
#include <utility>

#include "foundations/port/ZelExport.h"

class QUINTOR_API CQMTLocalise {
public:
    // With the file named by $QMT_CATALOGUE, else $QMTHOME/etc/messages.txt, read at the first call.
    static CQMTLocalise &Instance();

    CQMTLocalise() = default;  // no messages: every text is the default

    // Adds a file's messages. 1; E_RCOpenFailed, unreported, when there is none; E_RCBadValue when lines
    // were unusable: each is reported and passed over. Not while others call Get.
    int Load(const char *path);

    // Copies the message's text, or the default, into the buffer, cut between characters if it is too long
    // and always with a NUL; gives the buffer. A size of 0 writes nothing; a null default is empty.
    char *Get(int set, int message, const char *defaultText, char *buffer, unsigned int size) const;

private:
    bool addLine(const std::string &line);

    std::map<std::pair<int, int>, std::string> m_messages;
};
