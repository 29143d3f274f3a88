#include <atomic>
#include <cstddef>
#include <cstdio>
#include <mutex>

#include "clause/CZelCmdCmplr.h"
#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelHashStore.h"
#include "foundations/base/CZelStack.h"
#include "foundations/base/CZelString.h"
#include "foundations/base/CZelTreeList.h"
#include "foundations/base/CZelVarBind.h"
#include "foundations/port/CZelError.h"
#include "foundations/port/ZelDebug.h"

namespace {

// How `this` walks the topology graph.
constexpr SZelCmdCmpConstsRecord TRAVERSAL[] = {
    {"physical", -2}, {"mylevel", -3}, {"includerecursed", 1}, {"excluderecursed", 2}};

constexpr SZelCmdCmpConstsRecord ENTITY_KINDS[] = {
    {"ZelUnknown", 0}, {"ZelChassis", 1}, {"ZelInterface", 2}, {"ZelLogicalInterface", 3},
    {"ZelVlan", 4},    {"ZelCard", 5},    {"ZelPSU", 6},       {"ZelLogicalCollection", 7},
    {"ZelModule", 8}};

// Several names may share a service.
constexpr SZelSubjectRecord SUBJECTS[] = {{"Model", "ZELTRONIX.3.0.MODEL.QUERY"},
                                          {"Galen", "ZELTRONIX.3.0.EVENT.QUERY"},
                                          {"Event", "ZELTRONIX.3.0.EVENT.QUERY"},
                                          {"Events", "ZELTRONIX.3.0.EVENT.QUERY"},
                                          {"Class", "ZELTRONIX.3.0.CLASS.QUERY"},
                                          {"Auth", "ZELTRONIX.3.0.AUTH.QUERY"},
                                          {"Monitor", "ZELTRONIX.3.0.MONITOR.QUERY"},
                                          {"MonitorAgent", "ZELTRONIX.3.0.MONITOR.AGENT.QUERY"},
                                          {"Exec", "ZELTRONIX.3.0.EXEC.QUERY"},
                                          {"Ctrl", "ZELTRONIX.3.0.CTRL.QUERY"},
                                          {"Dist", "ZELTRONIX.3.0.DIST.QUERY"},
                                          {"DbServer", "ZELTRONIX.3.0.DBSERVER.QUERY"},
                                          {"Helper", "ZELTRONIX.3.0.HELPER.QUERY"},
                                          {"Scout", "ZELTRONIX.3.0.SCOUT.QUERY"},
                                          {"PathTrace", "ZELTRONIX.3.0.PATHTRACE.QUERY"},
                                          {"SnmpHelper", "QMT.SNMPHELPER.QUERY"},
                                          {"Store", "ZELTRONIX.3.0.STORE.QUERY"},
                                          {"Repository", "ZELTRONIX.3.0.STORE.QUERY"},
                                          {"PriorityEvents", "ZELTRONIX.3.0.EVENT.PQUERY"},
                                          {"Monitor2ObjHub", "QMT.MONITOR.TO.OBJHUB"},
                                          {"ScoutPingFinder", "ZELTRONIX.3.0.SCOUT.PINGFINDER.QUERY"},
                                          {"PathTool", "ZELTRONIX.3.0.PATHTOOL.QUERY"}};

constexpr SZelCmdCmpConstsRecord ADDRESS_FAMILIES[] = {{"AF_INET", 2}, {"AF_INET6", 23}};

// The constants of the process: loaded under the lock, read without one.
struct StaticConstants {
    std::mutex lock;
    std::atomic<bool> loaded{false};
    CZelHashStore store{100, E_RBFalse, E_RBTrue, 70};

    ~StaticConstants() { empty(); }

    void empty() {
        CZelStack *constants = store.RHSRetrieveAll();
        while (void *constant = constants->RSPop())
            delete static_cast<CZelVarBind *>(constant);
        delete constants;
        loaded = false;
    }
};

StaticConstants &statics() {
    static StaticConstants constants;
    return constants;
}

int addStatic(CZelVarBind *constant) {
    const int status = statics().store.RHSAddObjectAt(constant->RVBName().RAString(), constant);
    if (status != 1)
        delete constant;
    return status;
}

void warnOfDuplicate(const char *name) {
    if (__Zeltronix_Debug_Level >= 4)
        std::printf("Warning : Attempt to add duplicate key ( %s ) to CZelCmdCmplr::ms_ConstStore. %s %d\n", name,
                    ZEL_SOURCE_NAME, __LINE__);
}

template <class Row, std::size_t N>
constexpr unsigned int rows(const Row (&)[N]) {
    return static_cast<unsigned int>(N);
}

const CZelAtom *valueOf(const void *constant) {
    return constant != nullptr ? static_cast<const CZelVarBind *>(constant)->RVBValue() : nullptr;
}

}  // namespace

void CZelCmdCmplr::RCCInitStaticConstStore(unsigned int count, SZelCmdCmpConstsRecord *callerRows) {
    if (statics().loaded.load(std::memory_order_acquire))
        return;
    const std::lock_guard<std::mutex> guard(statics().lock);
    if (statics().loaded)
        return;
    RCCAddToStaticConstStore(rows(TRAVERSAL), TRAVERSAL);
    RCCAddToStaticConstStore(rows(ENTITY_KINDS), ENTITY_KINDS);
    RCCAddToStaticConstStore(rows(SUBJECTS), SUBJECTS);
    RCCAddToStaticConstStore(rows(ADDRESS_FAMILIES), ADDRESS_FAMILIES);
    if (count != 0)
        RCCAddToStaticConstStore(count, callerRows);
    statics().loaded = true;
}

void CZelCmdCmplr::RCCAddToStaticConstStore(unsigned int count, const SZelCmdCmpConstsRecord *constants) {
    for (unsigned int i = 0; i < count; ++i)
        if (addStatic(new CZelVarBind(constants[i].name, constants[i].value)) != 1)
            warnOfDuplicate(constants[i].name);
}

void CZelCmdCmplr::RCCAddToStaticConstStore(unsigned int count, const SZelSubjectRecord *subjects) {
    for (unsigned int i = 0; i < count; ++i) {
        const int status = addStatic(new CZelVarBind(subjects[i].name, subjects[i].subject));
        if (status != 1)
            ZEL_REPORT(status, subjects[i].name);
    }
}

void CZelCmdCmplr::RCCDestroyStaticConstStore() {
    const std::lock_guard<std::mutex> guard(statics().lock);
    statics().empty();
}

void CZelCmdCmplr::RCCDeleteContentsOfConstStore() {
    if (m_ConstStore == nullptr)
        return;
    CZelDoubleList *constants = m_ConstStore->RTLIterator();
    for (CZelListable *node = constants->RDLHead(); node != nullptr; node = constants->RDLGetNext(node))
        delete static_cast<CZelVarBind *>(static_cast<CZelPointer *>(node)->RPData());
}

int CZelCmdCmplr::RCCAddToConstStore(CZelVarBind *constant) {
    if (constant == nullptr || constant->RVBValue() == nullptr)
        return ZEL_FAIL(E_RCBadArgument, "CZelCmdCmplr::RCCAddToConstStore");
    if (m_ConstStore == nullptr)
        m_ConstStore = std::make_unique<CZelTreeList>(E_RBFalse);
    const int status = m_ConstStore->RTLAdd(&constant->RVBName(), static_cast<void *>(constant), true);
    return status == 1 ? 1 : ZEL_FAIL(status, constant->RVBName().RAString());
}

int CZelCmdCmplr::RCCRemoveFromConstStore(CZelVarBind *constant) {
    if (constant == nullptr)
        return ZEL_FAIL(E_RCBadArgument, "CZelCmdCmplr::RCCRemoveFromConstStore");
    if (constant->RVBValue() == nullptr)
        ZEL_REPORT(E_RCBadArgument, "CZelCmdCmplr::RCCRemoveFromConstStore");
    const int status = m_ConstStore != nullptr ? m_ConstStore->RTLDelete(&constant->RVBName()) : E_RCNotInTree;
    return status == 1 ? 1 : ZEL_FAIL(status, constant->RVBName().RAString());
}

__boolean CZelCmdCmplr::RCCDoesConstExist(CZelAtom *name) {
    return ZelBool(name != nullptr && m_ConstStore != nullptr && m_ConstStore->RTLGet(name) != nullptr);
}

int CZelCmdCmplr::RCCGetNumFromConst(const char *name, const CZelAtom **value) {
    *value = nullptr;
    if (name == nullptr)
        return E_RCNotFound;
    if (const CZelHashNode *node = statics().store.RHSRetrieveObject(name)) {
        *value = valueOf(node->RHNGetObject());
        return 1;
    }
    const CZelPointer *own = m_ConstStore != nullptr ? m_ConstStore->RTLGet(name) : nullptr;
    if (own == nullptr)
        return E_RCNotFound;
    *value = valueOf(own->RPData());
    return 1;
}
