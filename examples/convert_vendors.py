#!/usr/bin/env python3
"""Makes an OQL schema file of the whole public table of MAC vendors, for measuring.

    examples/convert_vendors.py OUI.csv[.gz] > vendors.oql

A block that the table lists twice is taken once; a text that holds both quotes loses the double ones.
"""
import csv
import gzip
import sys

HEAD = """create database inventory;
create table inventory.vendors
(
    Oui      text not null primary key,
    Name     text not null,
    Address  text
);
"""


def quoted(text):
    if "'" not in text:
        return f"'{text}'"
    return '"' + text.replace('"', "") + '"'


def main(path):
    opener = gzip.open if path.endswith(".gz") else open
    seen = set()
    sys.stdout.reconfigure(encoding="utf-8")
    print(HEAD)
    with opener(path, "rt", encoding="utf-8", newline="") as table:
        for row in csv.DictReader(table):
            oui = row["Assignment"]
            if oui not in seen:
                seen.add(oui)
                print(f"insert into inventory.vendors (Oui, Name, Address) values ({quoted(oui)}, "
                      f"{quoted(row['Organization Name'].strip())}, {quoted(row['Organization Address'].strip())});")


if __name__ == "__main__":
    if len(sys.argv) != 2:
        sys.exit("usage: convert_vendors.py OUI.csv[.gz]")
    main(sys.argv[1])
