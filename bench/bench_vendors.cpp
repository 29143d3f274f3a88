// The public table of MAC address vendors as a schema file: read, parsed and loaded.
#include <cstdio>
#include <cstdlib>

#include "bench/BenchRows.h"
#include "bench/OurStore.h"
#include "bench/PairTable.h"
#include "bench/Sqlite.h"
#include "bench/works.h"
#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelRecord.h"
#include "oql/CZelSchema.h"

namespace {

struct Vendor {
    std::string oui;
    std::string name;
    std::string address;
};

std::string textOf(const CZelRecord &record, const char *name) {
    const CZelAtom *value = record.RRValueOf(name);
    return value != nullptr && value->RAString() != nullptr ? value->RAString() : "";
}

long readOurs(const char *path, CZelStoreMgr &manager) {
    CZelSchema schema;
    if (schema.RSReadSchema(path, false) != 1 || manager.RSMReadSchema(schema) != 1)
        std::exit(1);
    CZelBag *rows = nullptr;
    manager.RSMProcessOQLGetRecs("select count(*) from inventory.vendors;", &rows, nullptr, nullptr);
    const CZelBagGuard<CZelRecord> owner(rows);
    const auto *count = static_cast<const CZelRecord *>(rows->RBFirst()->RPData());
    return count->RRValueOf("Count")->RAInt();
}

BenchRun loadOurs(const char *path) {
    CZelStoreMgr manager(static_cast<CZelEngine *>(nullptr), nullptr);
    long rows = 0;
    const double seconds = secondsOf([&] { rows = readOurs(path, manager); });
    if (rows == 0)
        std::exit(1);
    return {rows, seconds};
}

std::vector<Vendor> vendors(const char *path) {
    CZelStoreMgr manager(static_cast<CZelEngine *>(nullptr), nullptr);
    readOurs(path, manager);
    CZelBag *rows = nullptr;
    manager.RSMProcessOQLGetRecs("select * from inventory.vendors;", &rows, nullptr, nullptr);
    const CZelBagGuard<CZelRecord> owner(rows);
    std::vector<Vendor> all;
    for (CZelPointer *node = rows->RBFirst(); node != nullptr; node = CZelBag::RBNext(node)) {
        const auto &record = *static_cast<const CZelRecord *>(node->RPData());
        all.push_back({textOf(record, "Oui"), textOf(record, "Name"), textOf(record, "Address")});
    }
    return all;
}

std::string quoted(const std::string &text) {
    std::string out = "'";
    for (const char c : text)
        out += c == '\'' ? std::string("''") : std::string(1, c);
    return out + "'";
}

// The same rows as one script of SQL.
std::string script(const std::vector<Vendor> &all) {
    std::string text =
        "begin; create table vendors (Oui text not null primary key, Name text not null, Address text);\n";
    for (const Vendor &vendor : all)
        text += "insert into vendors (Oui, Name, Address) values (" + quoted(vendor.oui) + "," + quoted(vendor.name) +
                "," + quoted(vendor.address) + ");\n";
    return text + "commit;";
}

}  // namespace

void addVendorWork() {
    const char *path = std::getenv("QUINTOR_VENDORS");
    if (path == nullptr)
        return;
    const std::vector<Vendor> all = vendors(path);
    addPair(
        "load: vendor table from a script", "row", [path] { return loadOurs(path); },
        [sql = script(all), rows = static_cast<long>(all.size())] {
            Sqlite database;
            return BenchRun{rows, secondsOf([&] { database.run(sql); })};
        });
}
