#include "foundations/mom/CMOMRvDataCallback.h"

void CMOMRvDataCallback::OnTimeOut(CMOMRvListener * /*listener*/) {}
