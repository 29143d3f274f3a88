#include "oql/CZelOQLScanner.h"

CZelOQLScanner::CZelOQLScanner(const char *text, unsigned int length) {
    readText(text, length);
}
