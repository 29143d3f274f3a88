// What the shared library shows to programs. Everything else in it is hidden.
#pragma once

#define QUINTOR_API __attribute__((visibility("default")))
