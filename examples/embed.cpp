// A store inside a program: define a table, fill it, ask it.
#include <quintor/quintor.h>

#include <cstdio>

int main() {
    CZelStoreMgr store(nullptr, nullptr);  // no bus, nothing to call at a shutdown statement
    store.RSMProcessOQL(
        "create database net;"
        "create table net.chassis (Name text not null primary key, Ports list type text);"
        "insert into net.chassis (Name, Ports) values ('core1', ['core1/1', 'core1/2']);"
        "insert into net.chassis (Name, Ports) values ('edge7', ['edge7/1']);",
        nullptr, nullptr, nullptr);

    CZelBag *found = nullptr;
    EZelStoreErrorStatus status = E_RSEOk;
    store.RSMProcessOQLGetRecs("select Name from net.chassis where Ports(any) like 'core%';", &found, &status, nullptr);
    CZelBagGuard<CZelRecord> rows(found);  // the bag and its records are ours
    if (status != E_RSEOk || found == nullptr || rows->RBLength() != 1)
        return 1;
    std::puts(static_cast<CZelRecord *>(rows->RBFirst()->RPData())->RRValueOf("Name")->RAString());
    return 0;
}
