#!/usr/bin/env python3
"""Makes samples/gauquelin_a1.dat and .nat, the research sample project: the
2,087 European sports champions of Michel and Francoise Gauquelin's series A,
volume 1.

Original publication: Michel et Francoise Gauquelin, "Birth and Planetary
Data Gathered since 1949", series A (Professional Notabilities), volume 1,
"2088 Sports Champions". Laboratoire d'etude des relations entre rythmes
cosmiques et psychophysiologiques (LERRCP), Paris, 1970.

Source used: the Open Gauquelin Database republication (Thierry Graff, the
"g5" project, https://github.com/tig12/g5), which took the records from the
fifth C.U.R.A. edition of the Gauquelin archives (Patrice Guinard, 2009,
http://cura.free.fr/gauq/902gdA1y.html, as archived on 2020-09-16), merged
them with the names, and coded each champion's sport. The file converted is

    data/db/init/lerrcp-marked/A1.csv at commit
    f3927b16e7fe4a1e1b5d362b18c68c557ee7885a of github.com/tig12/g5
    SHA-256 613b965d54ba429231167034d7564ac2db9aabc6f5e6821810518b7f80a88913

The project states that its files containing data and corrections are
released under the Creative Commons Attribution-ShareAlike 4.0 licence
(https://creativecommons.org/licenses/by-sa/4.0/), besides the GPL and the
GFDL; the sample made here is therefore itself CC BY-SA 4.0. Get the file
with `git show f3927b1:data/db/init/lerrcp-marked/A1.csv > A1.csv` in a clone
of that repository, then

    python3 tools/make_research_sample.py A1.csv samples/gauquelin_a1

Conversion rules:
- Times. The archive does not give the clock time of the birth register: the
  Gauquelins' times were reduced to standard time, either of zone 0 (GMT)
  or of zone -1 (CET), summer time and local mean time taken out. The source
  writes them as "1937-09-17 17:00:00+00:00" and "1918-07-13 13:00:00-01:00",
  where the suffix is the archive's zone number (0 or -1), not an ISO offset
  (Italian times are Central European Time, one hour AHEAD of Greenwich).
  The archive's zone number is what is added to the time to get Universal
  Time, which is this program's convention for ZoneHours: the hour, minute and
  second go into the record as they stand, zone 0 as "GMT" 0 and zone -1 as
  "CET" -1. The record's moment in UT is the archive's; no time zone history
  is applied again.
- Places. Longitude west positive (the source's east-positive decimal
  degrees with the sign turned), latitude north positive. The archive gives
  the coordinates to the arc minute, often those of the departement's or
  province's chief town rather than of the village. Placename is the
  archive's place name, upper case as printed, and the country.
- Every record has DetailLevel 3 (time and place), DayRange 0, Enabled.
- Description: "Family Given (A1-n)", n being the Gauquelin number; the
  232 champions whose names the republication could not match are
  "Unnamed (A1-n)".
- Categories: Sport (list), Country (list), Gauquelin Number (numeric), 1955
  Group (list: "Yes" when the champion was one of the 570 sportsmen of
  Gauquelin's 1955 book, as the republication marks them).
The files are written in Latin-1 with CR LF line ends, floats in their
shortest single-precision form, records in Gauquelin number order (which
groups the sports).
"""

import csv
import hashlib
import re
import sys

from project_text import category_list, nat_text, single

EXPECTED_SHA256 = "613b965d54ba429231167034d7564ac2db9aabc6f5e6821810518b7f80a88913"
EXPECTED_RECORDS = 2087

SPORTS = {
    "ATH": "Athletics", "AUT": "Motor Racing", "AVI": "Aviation", "AVR": "Rowing",
    "BAS": "Basketball", "BIL": "Billiards", "BOX": "Boxing", "CAN": "Canoeing",
    "CYC": "Cycling", "EQU": "Equestrian", "ESC": "Fencing", "FOO": "Football",
    "GLA": "Ice Sports", "GOL": "Golf", "GYM": "Gymnastics", "HAL": "Weightlifting",
    "HAN": "Handball", "HOC": "Hockey", "LUT": "Wrestling", "MAR": "Race Walking",
    "NAT": "Swimming", "PEL": "Basque Pelota", "RUG": "Rugby", "SKI": "Skiing",
    "TEN": "Tennis", "TIR": "Shooting", "VOI": "Sailing", "VOL": "Volleyball",
}
COUNTRIES = {
    "FR": "France", "IT": "Italy", "BE": "Belgium", "NL": "Netherlands",
    "DE": "Germany", "DZ": "Algeria", "MC": "Monaco",
}
# The archive's zone number: (abbreviation, hours added to reach UT).
ZONES = {"+00:00": ("GMT", 0.0), "-01:00": ("CET", -1.0)}

TITLE = "Gauquelin A1: 2087 sports champions"
CATEGORY_NAMES = ["Sport", "Country", "Gauquelin Number", "1955 Group"]
CATEGORY_TYPES = [0, 0, 1, 0]

DATE = re.compile(r"^(\d{4})-(\d\d)-(\d\d) (\d\d):(\d\d):(\d\d)([+-]\d\d:\d\d)$")
GAUQUELIN_PLACEHOLDER = re.compile(r"^Gauquelin-A1-\d+$")


class SourceError(Exception):
    pass


def check_text(text, what, num):
    if '"' in text or "\r" in text or "\n" in text:
        raise SourceError(f"A1-{num}: {what} holds a quote or a line break: {text!r}")
    try:
        text.encode("latin-1")
    except UnicodeEncodeError:
        raise SourceError(f"A1-{num}: {what} is not Latin-1: {text!r}") from None
    return text


def convert_row(row):
    num = row["NUM"].strip()
    if not num.isdigit():
        raise SourceError(f"bad NUM {num!r}")
    m = DATE.match(row["DATE"].strip())
    if not m:
        raise SourceError(f"A1-{num}: bad DATE {row['DATE']!r}")
    year, month, day, hour, minute, second = (int(g) for g in m.groups()[:6])
    if m.group(7) not in ZONES:
        raise SourceError(f"A1-{num}: zone {m.group(7)} is neither GMT nor CET")
    zone_abbr, zone_hours = ZONES[m.group(7)]
    if not (1 <= month <= 12 and 1 <= day <= 31 and hour < 24 and minute < 60 and second < 60):
        raise SourceError(f"A1-{num}: date or time out of range {row['DATE']!r}")
    try:
        east = float(row["LON"])
        north = float(row["LAT"])
    except ValueError:
        raise SourceError(f"A1-{num}: bad coordinates {row['LON']!r} {row['LAT']!r}") from None
    if not (-180 <= east <= 180 and -90 <= north <= 90):
        raise SourceError(f"A1-{num}: coordinates out of range")
    sport = SPORTS.get(row["OCCU"].strip())
    country = COUNTRIES.get(row["CY"].strip())
    if sport is None or country is None:
        raise SourceError(f"A1-{num}: unknown sport {row['OCCU']!r} or country {row['CY']!r}")

    name = row["NAME"].strip()
    if GAUQUELIN_PLACEHOLDER.match(name):
        name = "Unnamed"
    description = check_text(f"{name} (A1-{num})", "name", num)
    placename = check_text(f"{row['PLACE'].strip()}, {country}", "place", num)
    in_1955 = "Yes" if row["1955"].strip() else "No"

    fields = [
        f'"{description}"', str(year), str(month), str(day), str(hour), str(minute), str(second),
        "0", "3", f'"{zone_abbr}"', single(zone_hours), f'"{placename}"',
        single(-east), single(north), "-1", "0",
        '"' + category_list([sport, country, num, in_1955]) + '"',
    ]
    return int(num), ",".join(fields)


def main(argv):
    if len(argv) != 3:
        sys.stderr.write("usage: make_research_sample.py A1.csv OUTPUT_STEM\n")
        return 2
    source, stem = argv[1], argv[2]
    raw = open(source, "rb").read()
    digest = hashlib.sha256(raw).hexdigest()
    if digest != EXPECTED_SHA256:
        sys.stderr.write(f"warning: {source} has SHA-256 {digest}, not the converted edition's\n")
    try:
        rows = list(csv.DictReader(raw.decode("utf-8").splitlines()))
        records = sorted(convert_row(row) for row in rows)
        numbers = [n for n, _ in records]
        if len(set(numbers)) != len(numbers):
            raise SourceError("a Gauquelin number occurs twice")
    except (SourceError, KeyError, UnicodeDecodeError) as error:
        sys.stderr.write(f"{source}: {error}\n")
        return 1
    if len(records) != EXPECTED_RECORDS:
        sys.stderr.write(f"warning: {len(records)} records, not {EXPECTED_RECORDS}\n")
    with open(stem + ".dat", "wb") as out:
        out.write("".join(line + "\r\n" for _, line in records).encode("latin-1"))
    with open(stem + ".nat", "wb") as out:
        out.write(nat_text(TITLE, CATEGORY_NAMES, CATEGORY_TYPES).encode("latin-1"))
    print(f"{len(records)} records written to {stem}.dat and {stem}.nat (source SHA-256 {digest})")
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv))
