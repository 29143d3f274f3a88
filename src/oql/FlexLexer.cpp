#include "oql/FlexLexer.h"

FlexLexer::~FlexLexer() = default;
