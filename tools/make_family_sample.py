#!/usr/bin/env python3
"""Makes samples/royal_family.dat, .nat and .txt, the family sample project:
sixteen members of the British royal family over four generations, each
with the clock time of birth as it was made public at the time.

Sources. For fifteen of the sixteen the time is the one in the official
announcement of the birth: the bulletin posted at Buckingham Palace (for
Princess Margaret, the notice issued from Glamis Castle; from 2013 the
statement of Kensington Palace and the notice on the easel at Buckingham
Palace), printed in the Court Circular and in The Times and the rest of the
press of the day or the next morning. Those times are rated AA here: a time
recorded at the birth itself. Diana, Princess of Wales was not born to the
royal family and no bulletin was issued; her time is the one her mother,
Frances Shand Kydd, gave from memory, rated A. Each row of PEOPLE below
carries its own source note, which goes into the .txt as well.

Conversion rules:
- Date and time are the local clock time of the announcement, to the minute
  (seconds 0). The zone is British Summer Time ("BST", -1) or Greenwich
  Mean Time ("GMT", 0): this program's zone is what is added to the clock
  time to reach Universal Time, and BST runs one hour ahead of Greenwich.
  The script checks each zone against the summer time dates of the year in
  BST_PERIODS and refuses a birth that falls on a changeover day.
- Places: coordinates to the arc minute, written in decimal degrees to five
  places, latitude north positive, longitude west positive (Sandringham, east
  of Greenwich, is negative).
- Every record has DetailLevel 3 (time and place), DayRange 0, Enabled.
- Description: the person's name as the family is known today.
- Categories: Relation to Elizabeth II (list), Generation (numeric, 1 for
  Elizabeth II and her sister, 4 for her great-grandchildren), Parents
  (free text).
- The project has no natal chart of its own: Name blank, Time "Unknown".
The files are written in ASCII with CR LF line ends, floats in their
shortest single-precision form, records in order of birth.

Usage: python3 tools/make_family_sample.py [OUTPUT_STEM]
(default OUTPUT_STEM: samples/royal_family beside this script's folder).
"""

import datetime
import os
import sys

from project_text import category_list, nat_text, single

TITLE = "The British Royal Family: four generations"
CATEGORY_NAMES = ["Relation to Elizabeth II", "Generation", "Parents"]
CATEGORY_TYPES = [0, 1, 2]

# Zone abbreviation: hours added to local clock time to reach UT.
ZONES = {"BST": -1.0, "GMT": 0.0}

# British Summer Time of each year used: (first day, last day) of summer
# time, the changes being made in the early hours of those Sundays.
BST_PERIODS = {
    1926: ((4, 18), (10, 3)),
    1930: ((4, 13), (10, 5)),
    1948: ((3, 14), (10, 31)),
    1950: ((4, 16), (10, 22)),
    1960: ((4, 10), (10, 2)),
    1961: ((3, 26), (10, 29)),
    1964: ((3, 22), (10, 25)),
    1977: ((3, 20), (10, 23)),
    1981: ((3, 29), (10, 25)),
    1982: ((3, 28), (10, 24)),
    1984: ((3, 25), (10, 28)),
    1988: ((3, 27), (10, 23)),
    1990: ((3, 25), (10, 28)),
    2013: ((3, 31), (10, 27)),
    2015: ((3, 29), (10, 25)),
    2018: ((3, 25), (10, 28)),
}

# Place name: (latitude, longitude) in degrees and arc minutes.
PLACES = {
    "17 Bruton Street, Mayfair, London": ("51N31", "0W09"),
    "Glamis Castle, Angus, Scotland": ("56N37", "3W00"),
    "Buckingham Palace, London": ("51N30", "0W08"),
    "Clarence House, London": ("51N30", "0W08"),
    "Park House, Sandringham, Norfolk": ("52N50", "0E30"),
    "St Mary's Hospital, Paddington, London": ("51N31", "0W10"),
    "Portland Hospital, London": ("51N31", "0W09"),
}

BULLETIN = "AA"
FAMILY = "A"
RATINGS = {
    BULLETIN: "time recorded at the birth and published in the official announcement",
    FAMILY: "time given from memory by the family",
}

GEORGE_VI = "Duke and Duchess of York (George VI and Queen Elizabeth)"
ELIZABETH = "Elizabeth II and Prince Philip"
CHARLES = "Charles III and Diana"
ANNE = "Princess Anne and Mark Phillips"
ANDREW = "Prince Andrew and Sarah Ferguson"
WILLIAM = "Prince William and Catherine Middleton"

# name, date (y, m, d), local time (h, min), zone, place, rating,
# relation to Elizabeth II, generation, parents, source note.
PEOPLE = [
    ("Queen Elizabeth II", (1926, 4, 21), (2, 40), "BST", "17 Bruton Street, Mayfair, London",
     BULLETIN, "Self", 1, GEORGE_VI,
     "Announcement that the Duchess of York was safely delivered of a princess at"
     " 2.40 am, issued from 17 Bruton Street (the Earl of Strathmore's London house)"
     " and printed in the Court Circular and The Times of 21-22 April 1926."),
    ("Princess Margaret", (1930, 8, 21), (21, 22), "BST", "Glamis Castle, Angus, Scotland",
     BULLETIN, "Sister", 1, GEORGE_VI,
     "Announcement issued from Glamis Castle of the birth of a princess at 9.22 pm,"
     " printed in the Court Circular and the press of 22 August 1930."),
    ("King Charles III", (1948, 11, 14), (21, 14), "GMT", "Buckingham Palace, London",
     BULLETIN, "Son", 2, ELIZABETH,
     "Bulletin posted at Buckingham Palace: Princess Elizabeth safely delivered of a"
     " prince at 9.14 pm; Court Circular and The Times of 15 November 1948."),
    ("Princess Anne", (1950, 8, 15), (11, 50), "BST", "Clarence House, London",
     BULLETIN, "Daughter", 2, ELIZABETH,
     "Bulletin issued from Clarence House: Princess Elizabeth safely delivered of a"
     " princess at 11.50 am; Court Circular and the press of 15-16 August 1950."),
    ("Prince Andrew", (1960, 2, 19), (15, 30), "GMT", "Buckingham Palace, London",
     BULLETIN, "Son", 2, ELIZABETH,
     "Bulletin posted at Buckingham Palace: the Queen safely delivered of a son at"
     " 3.30 pm; Court Circular and The Times of 20 February 1960."),
    ("Diana, Princess of Wales", (1961, 7, 1), (19, 45), "BST", "Park House, Sandringham, Norfolk",
     FAMILY, "Daughter-in-law", 2, "Viscount and Viscountess Althorp",
     "No bulletin: born a daughter of Viscount Althorp, later the 8th Earl Spencer."
     " The time, 7.45 pm, is her mother Frances Shand Kydd's statement."),
    ("Prince Edward", (1964, 3, 10), (20, 20), "GMT", "Buckingham Palace, London",
     BULLETIN, "Son", 2, ELIZABETH,
     "Bulletin posted at Buckingham Palace: the Queen safely delivered of a son at"
     " 8.20 pm; Court Circular and The Times of 11 March 1964."),
    ("Peter Phillips", (1977, 11, 15), (10, 46), "GMT", "St Mary's Hospital, Paddington, London",
     BULLETIN, "Grandson", 3, ANNE,
     "Buckingham Palace announcement: Princess Anne safely delivered of a son at"
     " 10.46 am; Court Circular and the press of 15-16 November 1977."),
    ("Zara Tindall", (1981, 5, 15), (20, 15), "BST", "St Mary's Hospital, Paddington, London",
     BULLETIN, "Granddaughter", 3, ANNE,
     "Buckingham Palace announcement: Princess Anne safely delivered of a daughter at"
     " 8.15 pm; Court Circular and the press of 16 May 1981."),
    ("Prince William", (1982, 6, 21), (21, 3), "BST", "St Mary's Hospital, Paddington, London",
     BULLETIN, "Grandson", 3, CHARLES,
     "Bulletin posted at Buckingham Palace: the Princess of Wales safely delivered of a"
     " son at 9.03 pm; Court Circular and The Times of 22 June 1982."),
    ("Prince Harry", (1984, 9, 15), (16, 20), "BST", "St Mary's Hospital, Paddington, London",
     BULLETIN, "Grandson", 3, CHARLES,
     "Bulletin posted at Buckingham Palace: the Princess of Wales safely delivered of a"
     " son at 4.20 pm; Court Circular and the press of 15-17 September 1984."),
    ("Princess Beatrice", (1988, 8, 8), (20, 18), "BST", "Portland Hospital, London",
     BULLETIN, "Granddaughter", 3, ANDREW,
     "Buckingham Palace announcement: the Duchess of York safely delivered of a"
     " daughter at 8.18 pm; Court Circular and the press of 9 August 1988."),
    ("Princess Eugenie", (1990, 3, 23), (19, 58), "GMT", "Portland Hospital, London",
     BULLETIN, "Granddaughter", 3, ANDREW,
     "Buckingham Palace announcement: the Duchess of York safely delivered of a"
     " daughter at 7.58 pm; Court Circular and the press of 24 March 1990."),
    ("Prince George", (2013, 7, 22), (16, 24), "BST", "St Mary's Hospital, Paddington, London",
     BULLETIN, "Great-grandson", 4, WILLIAM,
     "Kensington Palace statement and the notice on the easel at Buckingham Palace:"
     " the Duchess of Cambridge safely delivered of a son at 4.24 pm; press of"
     " 22-23 July 2013."),
    ("Princess Charlotte", (2015, 5, 2), (8, 34), "BST", "St Mary's Hospital, Paddington, London",
     BULLETIN, "Great-granddaughter", 4, WILLIAM,
     "Kensington Palace statement and the notice on the easel at Buckingham Palace:"
     " the Duchess of Cambridge safely delivered of a daughter at 8.34 am; press of"
     " 2-3 May 2015."),
    ("Prince Louis", (2018, 4, 23), (11, 1), "BST", "St Mary's Hospital, Paddington, London",
     BULLETIN, "Great-grandson", 4, WILLIAM,
     "Kensington Palace statement and the notice on the easel at Buckingham Palace:"
     " the Duchess of Cambridge safely delivered of a son at 11.01 am; press of"
     " 23-24 April 2018."),
]

FAMILY_TREE = """\
  Names with a year are in the project; names in brackets are not.
  "=" joins a married couple; their children are listed below them.

  [George VI] = [Queen Elizabeth, the Queen Mother]
  |
  +-- Queen Elizabeth II (1926) = [Prince Philip, Duke of Edinburgh]
  |   |
  |   +-- King Charles III (1948) = Diana, Princess of Wales (1961)
  |   |   |
  |   |   +-- Prince William (1982) = [Catherine Middleton]
  |   |   |   +-- Prince George (2013)
  |   |   |   +-- Princess Charlotte (2015)
  |   |   |   +-- Prince Louis (2018)
  |   |   |
  |   |   +-- Prince Harry (1984)
  |   |
  |   +-- Princess Anne (1950) = [Mark Phillips]
  |   |   +-- Peter Phillips (1977)
  |   |   +-- Zara Tindall (1981)
  |   |
  |   +-- Prince Andrew (1960) = [Sarah Ferguson]
  |   |   +-- Princess Beatrice (1988)
  |   |   +-- Princess Eugenie (1990)
  |   |
  |   +-- Prince Edward (1964)
  |
  +-- Princess Margaret (1930)
"""

MONTHS = ["Jan", "Feb", "Mar", "Apr", "May", "Jun", "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"]


class DataError(Exception):
    pass


def degrees(text, positive, negative):
    """'51N31' -> 51.5167, with the sign of the hemisphere letter."""
    for letter, sign in ((positive, 1.0), (negative, -1.0)):
        if letter in text:
            whole, minutes = text.split(letter)
            if not (whole.isdigit() and minutes.isdigit() and len(minutes) == 2 and int(minutes) < 60):
                break
            return sign * (int(whole) + int(minutes) / 60.0)
    raise DataError(f"bad coordinate {text!r}")


def check_text(text, what):
    if '"' in text or "|" in text or "\r" in text or "\n" in text or not text.isascii():
        raise DataError(f"{what} holds a quote, bar, line break or non-ASCII letter: {text!r}")
    return text


def check_zone(name, date, zone):
    """Refuses a zone that disagrees with the summer time of the birth date."""
    year, month, day = date
    if year not in BST_PERIODS:
        raise DataError(f"{name}: no summer time dates for {year}")
    start, end = (datetime.date(year, m, d) for m, d in BST_PERIODS[year])
    born = datetime.date(year, month, day)
    if born in (start, end):
        raise DataError(f"{name}: born on a summer time changeover day")
    expected = "BST" if start < born < end else "GMT"
    if zone != expected:
        raise DataError(f"{name}: zone {zone}, but {born} is in {expected}")


def universal_time(date, clock, zone):
    return datetime.datetime(*date, *clock) + datetime.timedelta(hours=ZONES[zone])


def record_line(person):
    name, date, clock, zone, place, rating, relation, generation, parents, source = person
    check_text(name, "name")
    check_text(parents, "parents")
    check_text(relation, "relation")
    check_zone(name, date, zone)
    if rating not in RATINGS or not source:
        raise DataError(f"{name}: no rating or source")
    if place not in PLACES:
        raise DataError(f"{name}: unknown place {place!r}")
    year, month, day = date
    hour, minute = clock
    datetime.datetime(year, month, day, hour, minute)  # raises on an impossible date or time
    lat_text, lon_text = PLACES[place]
    latitude = degrees(lat_text, "N", "S")
    longitude = degrees(lon_text, "W", "E")
    fields = [
        f'"{name}"', str(year), str(month), str(day), str(hour), str(minute), "0",
        "0", "3", f'"{zone}"', single(ZONES[zone]), f'"{check_text(place, "place")}"',
        single(round(longitude, 5)), single(round(latitude, 5)), "-1", "0",
        '"' + category_list([relation, generation, parents]) + '"',
    ]
    return ",".join(fields)


def wrap(text, indent, width=78):
    """Fills text into lines of at most width characters; a text that opens
    with "- " hangs its later lines under the first word."""
    hang = indent + ("  " if text.startswith("- ") else "")
    lines, line = [], indent
    for word in text.split():
        if len(line) + len(word) + 1 > width and line.strip():
            lines.append(line.rstrip())
            line = hang
        line += word + " "
    lines.append(line.rstrip())
    return "\n".join(lines)


def clock_text(hour, minute):
    return f"{(hour + 11) % 12 + 1}:{minute:02d} {'am' if hour < 12 else 'pm'}"


def notes_text():
    out = [f"Vintar Project: {TITLE}", ""]
    out.append(wrap(
        "A family sample for the group search: sixteen members of the British royal"
        " family across four generations, from Queen Elizabeth II and her sister"
        " Princess Margaret to her great-grandchildren, each with the time of birth"
        " as it was announced. Search the group for harmonic patterns the charts"
        " share, show them as strips, or write the group report; the categories"
        " \"Relation to Elizabeth II\" and \"Generation\" select a branch or a"
        " generation.", ""))
    out += ["", "Family tree", FAMILY_TREE.rstrip("\n"), ""]
    out.append("The records (local clock time, zone, and Universal Time)")
    for person in PEOPLE:
        name, date, clock, zone, place, rating = person[:6]
        ut = universal_time(date, clock, zone)
        lat_text, lon_text = PLACES[place]
        out.append(f"  {name}")
        out.append(f"    {date[2]} {MONTHS[date[1] - 1]} {date[0]}, {clock_text(*clock)} {zone}"
                   f" ({ut:%H:%M} UT), rating {rating}")
        out.append(f"    {place}, {lat_text} {lon_text}")
        out.append(wrap("Source: " + person[9], "    "))
    out.append("")
    out.append("Ratings")
    for letter, meaning in RATINGS.items():
        out.append(f"  {letter:<3}{meaning}.")
    out.append("")
    out.append("Sources")
    out.append(wrap(
        "The birth of a child of the sovereign or of the sovereign's heir was made"
        " known by a bulletin signed by the attending doctors and posted at"
        " Buckingham Palace (or issued from the house where the birth took place),"
        " giving the hour and minute of the delivery. The Court Circular printed it"
        " in The Times and the other papers of the day or the next morning. Since"
        " 2013 Kensington Palace has issued the announcement and the same notice has"
        " been set on the easel in the forecourt of Buckingham Palace. Princess"
        " Anne's children and the Duke of York's daughters were announced by"
        " Buckingham Palace in the same way.", "  "))
    out.append(wrap(
        "Diana, Princess of Wales, was born into the Spencer family and no bulletin"
        " was issued. Her time, 7:45 pm, is the one her mother, Frances Shand Kydd,"
        " gave from memory.", "  "))
    out.append("")
    out.append("Caveats")
    out.append(wrap(
        "- Announced times are rounded to the minute, and what clock they were read"
        " from is not stated. A minute of time moves the Midheaven by about a"
        " quarter of a degree and, at British latitudes, the Ascendant by between"
        " a sixth and two thirds of a degree; the planets hardly move.", "  "))
    out.append(wrap(
        "- Diana's time is not from a bulletin but from her mother's memory, and"
        " other times, among them one in the early afternoon, have been put about. Her houses and angles are the least certain of the group;"
        " leave her record disabled to search without them.", "  "))
    out.append(wrap(
        "- Zones: British Summer Time (BST, one hour ahead of Greenwich) or Greenwich"
        " Mean Time (GMT), by the summer time dates of each year. In this program the"
        " zone time is what is added to the clock time to reach UT, so BST is -1.", "  "))
    out.append(wrap(
        "- Coordinates are to the arc minute (a nautical mile of latitude), which"
        " places the house or hospital, not the room. The house at 17 Bruton"
        " Street no longer stands.", "  "))
    out.append("")
    out.append("Public record")
    out.append(wrap(
        "The dates, times and places of these births are facts of public record,"
        " announced by the royal household and printed in the newspapers of the day."
        " The notes and the family tree were written for this sample.", "  "))
    out.append("")
    out.append("Rebuilding")
    out.append("  The data table is in tools/make_family_sample.py; in Vintar's source tree:")
    out.append("    python3 tools/make_family_sample.py samples/royal_family")
    return "".join(line + "\r\n" for line in "\n".join(out).split("\n"))


def main(argv):
    if len(argv) > 2:
        sys.stderr.write("usage: make_family_sample.py [OUTPUT_STEM]\n")
        return 2
    here = os.path.dirname(os.path.abspath(__file__))
    stem = argv[1] if len(argv) == 2 else os.path.normpath(os.path.join(here, "..", "samples", "royal_family"))
    try:
        people = sorted(PEOPLE, key=lambda p: (p[1], p[2]))
        if people != PEOPLE:
            raise DataError("the table is not in order of birth")
        lines = [record_line(p) for p in PEOPLE]
        notes = notes_text()
    except (DataError, ValueError) as error:
        sys.stderr.write(f"make_family_sample.py: {error}\n")
        return 1
    for suffix, text in ((".dat", "".join(line + "\r\n" for line in lines)),
                         (".nat", nat_text(TITLE, CATEGORY_NAMES, CATEGORY_TYPES)), (".txt", notes)):
        with open(stem + suffix, "wb") as out:
            out.write(text.encode("ascii"))
    print(f"{len(lines)} records written to {stem}.dat, .nat and .txt")
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv))
