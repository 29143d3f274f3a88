// The files of record caches: their folder, their names and their removal.
//
// A file is called CACHE.Cache.DATABASE.TABLE.DOMAIN and lies in the folder var/solvantis below the install root. A
// slash, a dot or a control byte inside one of the names stands there as two dots and two hex digits, "a.b" as
// "a..2Eb"; any other byte stands as it is. A single dot is therefore always a border between names, so no two tables
// share a file and no name leads out of the folder. The domain is empty where the process has none.
#pragma once

#include <string>
#include <string_view>

class CZelCacheFiles {
public:
    static std::string folder();  // with its trailing slash; empty without an install root
    static std::string nameOf(std::string_view cache, std::string_view database, std::string_view table);

    // Is it the name of a file of some table of this database, in the process's domain?
    static bool isOfDatabase(std::string_view name, std::string_view cache, std::string_view database);

    // Removes a file. One that a live table has open, of any process, is reported and stays; so is one that is a
    // link. A file that is not there is no failure.
    static void remove(const std::string &path);
};
