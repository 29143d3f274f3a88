#!/usr/bin/env python3
"""Makes the rows of an inventory, as an OQL schema file, from a network in GraphML and the table of MAC vendors.

    examples/convert_graphml.py NETWORK.graphml OUI.csv[.gz] > examples/network/data.oql

Nodes become chassis, each end of an edge an interface, each edge a link. What the sources do not say is numbered:
SOURCES.md tells which columns these are. The same input always gives the same output.
"""
import csv
import gzip
import ipaddress
import sys
import xml.etree.ElementTree as ElementTree

GRAPHML = "{http://graphml.graphdrawing.org/xmlns}"
CHASSIS, INTERFACE = 1, 2
FIRST_ADDRESS = ipaddress.IPv4Address("198.51.100.0")  # a block kept for documentation
VENDORS = ["Cisco Systems, Inc", "Juniper Networks", "Extreme Networks, Inc.", "Ciena Corporation",
           "Routerboard.com", "MICRO-STAR INT'L CO., LTD."]


class Network:
    """The nodes and edges of one GraphML file, each with its data under the names of the file's keys."""

    def __init__(self, path):
        root = ElementTree.parse(path).getroot()
        self._keys = {key.get("id"): key.get("attr.name") for key in root.findall(GRAPHML + "key")}
        graph = root.find(GRAPHML + "graph")
        self.facts = self._data(graph)
        self.nodes = {node.get("id"): self._data(node) for node in graph.findall(GRAPHML + "node")}
        self.edges = [(edge.get("source"), edge.get("target"), self._data(edge))
                      for edge in graph.findall(GRAPHML + "edge")]
        self._name_nodes()

    def _data(self, element):
        return {self._keys[item.get("key")]: item.text for item in element.findall(GRAPHML + "data")}

    def _name_nodes(self):
        """Labels repeat where a network meets the same peer twice: the second gets a number."""
        seen = {}
        for node in self.nodes.values():
            label = node["label"]
            seen[label] = seen.get(label, 0) + 1
            node["name"] = label if seen[label] == 1 else f"{label} #{seen[label]}"


def read_vendors(path):
    """The lowest block of each of VENDORS, in the order of that list."""
    opener = gzip.open if path.endswith(".gz") else open
    lowest = {}
    with opener(path, "rt", encoding="utf-8", newline="") as table:
        for row in csv.DictReader(table):
            name = row["Organization Name"]
            if name in VENDORS and (name not in lowest or row["Assignment"] < lowest[name]["Assignment"]):
                lowest[name] = row
    missing = [name for name in VENDORS if name not in lowest]
    if missing:
        sys.exit(f"convert_graphml.py: not in {path}: {', '.join(missing)}")
    return [lowest[name] for name in VENDORS]


def quoted(text):
    """A text literal. OQL texts have no escapes by default, so the quote is the one that the text does not hold."""
    if "'" not in text:
        return f"'{text}'"
    if '"' not in text:
        return f'"{text}"'
    raise ValueError("no OQL literal holds both quotes: " + text)


def obj(**members):
    return "{" + ", ".join(f"{name}={value}" for name, value in members.items()) + "}"


def insert(table, **columns):
    """One row, without the columns that have no value."""
    known = {name: value for name, value in columns.items() if value is not None}
    print(f"insert into net.{table} ({', '.join(known)})\n    values ({', '.join(map(str, known.values()))});")


def title(text):
    print(f"\n// {text}")


def speed_of(edge):
    return int(float(edge["LinkSpeedRaw"])) if "LinkSpeedRaw" in edge else None


def make_interfaces(network, vendors):
    """Two per edge, numbered from 1 in each chassis. The vendor goes by chassis: one box, one maker."""
    counts = dict.fromkeys(network.nodes, 0)
    interfaces = []
    for link, (source, target, edge) in enumerate(network.edges):
        for end, node in enumerate((source, target)):
            counts[node] += 1
            oui = vendors[int(node) % len(vendors)]["Assignment"]
            serial = f"{int(node):02X}{0:02X}{counts[node]:02X}"
            interfaces.append({
                "name": f"{network.nodes[node]['name']}/{counts[node]}", "node": node, "index": counts[node],
                "peer": target if end == 0 else source, "edge": edge, "oui": oui,
                "address": str(FIRST_ADDRESS + 2 * link + end),
                "mac": ":".join((oui + serial)[i:i + 2] for i in range(0, 12, 2))})
    return interfaces


def write_head(network):
    facts = network.facts
    print(f"// {facts['Network']}, {facts['GeoLocation']}, as of {facts['NetworkDate']}. Written by convert_graphml.py.")
    print("// Network: The Internet Topology Zoo (Knight, Nguyen, Falkner, Bowden, Roughan, IEEE JSAC 29(9), 2011),")
    print("// Creative Commons Attribution 4.0. Changed: turned into tables, with addresses and serial numbers added.")
    print("// Vendors: IEEE public listing of MAC address blocks. See SOURCES.md.")


def site_of(node):
    members = {"label": quoted(node["label"]), "role": quoted("router" if node["Internal"] == "1" else "peer")}
    if "Country" in node:
        members["country"] = quoted(node["Country"])
    return obj(**members)


def write_chassis(network, interfaces, vendors):
    title("The nodes. Peers, outside the network, have no place on the map.")
    for identity, node in network.nodes.items():
        ports = [quoted(port["name"]) for port in interfaces if port["node"] == identity]
        place = obj(lat=node["Latitude"], lon=node["Longitude"]) if "Latitude" in node else None
        insert("chassis", EntityName=quoted(node["name"]), EntityType=CHASSIS, ObjectId=1000 + int(identity),
               Site=site_of(node), Place=place,
               Vendor=quoted(vendors[int(identity) % len(vendors)]["Assignment"]),
               Interfaces="[" + ", ".join(ports) + "]")


def write_interfaces(network, interfaces):
    title("The ends of the edges.")
    for port in interfaces:
        insert("interfaces", EntityName=quoted(port["name"]), EntityType=INTERFACE,
               Chassis=quoted(network.nodes[port["node"]]["name"]), IfIndex=port["index"],
               Speed=speed_of(port["edge"]), IpAddr=quoted(port["address"]), Mac=quoted(port["mac"]),
               Vendor=quoted(port["oui"]),
               Extra=obj(label=quoted(port["edge"].get("LinkLabel", "")),
                         peer=quoted(network.nodes[port["peer"]]["name"])))


def write_links(network, interfaces):
    title("The edges.")
    for number, (_, _, edge) in enumerate(network.edges):
        a_end, z_end = interfaces[2 * number], interfaces[2 * number + 1]
        insert("links", LinkId=number + 1, AEnd=quoted(a_end["name"]), ZEnd=quoted(z_end["name"]),
               Speed=speed_of(edge), Label=quoted(edge.get("LinkLabel", "")))


def write_vendors(vendors):
    title("The makers of the blocks that the MAC addresses are from.")
    for row in vendors:
        insert("vendors", Oui=quoted(row["Assignment"]), Name=quoted(row["Organization Name"].strip()),
               Address=quoted(row["Organization Address"].strip()))


def main(arguments):
    if len(arguments) != 2:
        sys.exit("usage: convert_graphml.py NETWORK.graphml OUI.csv[.gz]")
    network, vendors = Network(arguments[0]), read_vendors(arguments[1])
    interfaces = make_interfaces(network, vendors)
    write_head(network)
    write_vendors(vendors)
    write_chassis(network, interfaces, vendors)
    write_interfaces(network, interfaces)
    write_links(network, interfaces)


if __name__ == "__main__":
    main(sys.argv[1:])
