#include <strings.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <ctime>
#include <string>

#include "clause/CZelClauseValue.h"
#include "clause/CZelCmdCmplr.h"
#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelEnv.h"
#include "foundations/port/CZelError.h"
#include "foundations/port/CZelProcess.h"
#include "foundations/port/ZelPort.h"
#include "foundations/version/CQMTVersion.h"

namespace {

std::atomic<CZelCmdCmplr::EnvironmentFilter> environmentFilter{nullptr};

bool isNamed(const char *name, const char *wanted) {
    return strcasecmp(name, wanted) == 0;
}

// Seconds of CPU time, with the share of the system, the user, or both.
CZelAtom *cpuSeconds(bool withSystem, bool withUser) {
    long long system = 0;
    long long user = 0;
    if (!CZelProcess::Instance().GetCPUUsage(system, user))
        return nullptr;
    const long long sum = (withSystem ? system : 0) + (withUser ? user : 0);
    return new CZelAtom(static_cast<float>(static_cast<double>(sum) / 1000000.0));
}

CZelAtom *fromEnvironment(const char *name) {
    const CZelCmdCmplr::EnvironmentFilter filter = environmentFilter;
    if (filter != nullptr && !filter(name))
        return nullptr;
    const char *value = std::getenv(name);
    return value != nullptr ? new CZelAtom(value) : nullptr;
}

}  // namespace

void CZelCmdCmplr::RCCSetEnvironmentFilter(EnvironmentFilter filter) {
    environmentFilter = filter;
}

CZelAtom *CZelCmdCmplr::RCCEvaluateDollar(const char *name) {
    CZelClauseValue value;
    RCCEvaluateDollar(name, value);
    return value.TakeAtom();
}

void CZelCmdCmplr::RCCEvaluateDollar(const char *name, CZelClauseValue &value) {
    value.Clear();
    if (name == nullptr) {
        ZEL_REPORT(E_RCBadArgument, "CZelCmdCmplr::RCCEvaluateDollar");
        return;
    }
    value.Adopt(evaluateBuiltIn(name));
    if (value.HasValue())
        return;
    name = followIndirections(name);
    const CZelAtom *constant = nullptr;
    if (name != nullptr && RCCGetNumFromConst(name, &constant) == 1 && constant != nullptr)
        value.Refer(constant);
    else if (name != nullptr)
        value.Adopt(fromEnvironment(name));
}

CZelAtom *CZelCmdCmplr::evaluateBuiltIn(const char *name) {
    using Evaluator = CZelAtom *(CZelCmdCmplr::*)(const char *);
    static constexpr Evaluator EVALUATORS[] = {
        &CZelCmdCmplr::RCCEvaluateDollarTime,        &CZelCmdCmplr::RCCEvaluateDollarCpuTime,
        &CZelCmdCmplr::RCCEvaluateDollarUserCpuTime, &CZelCmdCmplr::RCCEvaluateDollarSystemCpuTime,
        &CZelCmdCmplr::RCCEvaluateDollarFTime,       &CZelCmdCmplr::EvaluateDollarMemUsage,
        &CZelCmdCmplr::EvaluateDollarDomainName,     &CZelCmdCmplr::EvaluateDollarSoftwareVersion};
    for (const Evaluator evaluator : EVALUATORS)
        if (CZelAtom *value = (this->*evaluator)(name))
            return value;
    return nullptr;
}

// Each $ in front is one step: the text of the constant is the name of the next. A step that finds nothing
// keeps the name; a constant that is no text ends the chain with no name.
const char *CZelCmdCmplr::followIndirections(const char *name) {
    int steps = 0;
    while (name[steps] == '$')
        ++steps;
    name += steps;
    for (; steps > 0 && name != nullptr; --steps) {
        const CZelAtom *value = nullptr;
        if (RCCGetNumFromConst(name, &value) == 1)
            name = value != nullptr ? value->RAString() : nullptr;
    }
    return name;
}

CZelAtom *CZelCmdCmplr::RCCEvaluateDollarTime(const char *name) {
    return isNamed(name, "TIME") ? new CZelAtom(static_cast<long>(std::time(nullptr))) : nullptr;
}

CZelAtom *CZelCmdCmplr::RCCEvaluateDollarCpuTime(const char *name) {
    return isNamed(name, "CPUTIME") ? cpuSeconds(true, true) : nullptr;
}

CZelAtom *CZelCmdCmplr::RCCEvaluateDollarUserCpuTime(const char *name) {
    return isNamed(name, "USERCPUTIME") ? cpuSeconds(false, true) : nullptr;
}

CZelAtom *CZelCmdCmplr::RCCEvaluateDollarSystemCpuTime(const char *name) {
    return isNamed(name, "SYSTEMCPUTIME") ? cpuSeconds(true, false) : nullptr;
}

CZelAtom *CZelCmdCmplr::RCCEvaluateDollarFTime(const char *name) {
    if (!isNamed(name, "FTIME"))
        return nullptr;
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    return new CZelAtom(static_cast<long long>(std::chrono::duration_cast<std::chrono::milliseconds>(now).count()));
}

CZelAtom *CZelCmdCmplr::EvaluateDollarMemUsage(const char *name) {
    if (!isNamed(name, "MEMUSAGE"))
        return nullptr;
    const auto pid = static_cast<unsigned long>(CZelProcess::Instance().GetPID());
    return new CZelAtom(static_cast<long long>(ZelGetProcMemSize(pid)));
}

CZelAtom *CZelCmdCmplr::EvaluateDollarDomainName(const char *name) {
    const CZelAtom *domain = isNamed(name, "SOLVANTIS_DOMAIN") ? CZelEnv::REDomain(nullptr) : nullptr;
    return domain != nullptr ? new CZelAtom(*domain) : nullptr;
}

CZelAtom *CZelCmdCmplr::EvaluateDollarSoftwareVersion(const char *name) {
    if (!isNamed(name, "SOFTWARE_VERSION"))
        return nullptr;
    std::string text("System: ");
    text += CQMTVersion::Instance().System().AsString();
    text += " Sub system:";
    text += CQMTVersion::Instance().SubSystem().AsString();
    return new CZelAtom(text.c_str());
}
