#include "store/CZelTblAttr.h"

CZelTblAttr::~CZelTblAttr() = default;
