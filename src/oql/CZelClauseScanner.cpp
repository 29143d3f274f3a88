#include "oql/CZelClauseScanner.h"

CZelClauseScanner::CZelClauseScanner(const char *text, unsigned int length) : m_copy(ZelStrDup(text, length)) {
    readText(m_copy.get(), length);
}
