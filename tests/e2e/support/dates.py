"""How the program reads dates and shows them, worked out apart from its code.

A date is a pair: the fields as a tuple (year, month, day, hour, minute, second), and the zone in
minutes east of UTC. All zeros is the empty date. The machine's zone is Europe/Berlin."""

import calendar
import re
from datetime import datetime, timedelta, timezone
from zoneinfo import ZoneInfo

BERLIN = ZoneInfo("Europe/Berlin")
EMPTY = ((0, 0, 0, 0, 0, 0), 0)
UNSET = -32768

MONTHS = {name: number for number, name in enumerate(
    "jan feb mar apr may jun jul aug sep oct nov dec".split(), 1)} | {"mai": 5, "okt": 10, "dez": 12}
WEEKDAYS = (("sun", "mon", "tue", "wed", "thu", "fri", "sat"),
            ("so", "mo", "di", "mi", "do", "fr", "sa"))
ZONES = {
    0: ("UT", "GMT", "WET", "LCL"), 60: ("BST", "CET", "MET", "WEST", "WEDT"),
    120: ("EET", "EEST", "EEDT", "IST", "MET DST", "METDST", "CEST"), 480: ("HKT",), 540: ("JST",),
    -240: ("EDT",), -300: ("EST", "CDT"), -360: ("CST", "MDT"), -420: ("MST", "PDT"), -480: ("PST",),
}
ZONE_OF_NAME = {name.lower(): zone for zone, names in ZONES.items() for name in names}


def scan(text, pattern, names, fields):
    """The runtime's sscanf with %d, %s, widths, blanks and literals: stores what it fills into
    `fields` under `names` and returns how many, -1 at the end of the text before the first."""
    filled = 0
    for token in re.findall(r"%\d*[ds]|\s|.", pattern):
        if token.isspace():
            text = text.lstrip()
        elif token[0] == "%" and len(token) > 1:
            text = text.lstrip()
            if not text:
                return filled or -1
            width = int(token[1:-1] or 0)
            wanted = r"[+-]?\d+" if token[-1] == "d" else r"\S+"
            match = re.match(wanted, text[:width] if width else text)
            if not match:
                return filled
            name = names[filled]
            fields[name] = int(match[0]) if token[-1] == "d" else match[0]
            text = text[match.end():]
            filled += 1
        else:
            if not text and not filled:
                return -1
            if not text.startswith(token):
                return filled
            text = text[1:]
    return filled


TIME = ("hour", "minute", "second")


def _scan_from_name(text, fields):
    n = scan(text, "%3s %d %d %d:%d:%d %5s", ("name", "day", "year", *TIME, "zone"), fields)
    if n == 3 and fields["year"] < 25:
        n = scan(text, "%3s %d %d:%d:%d %d %5s", ("name", "day", *TIME, "year", "zone"), fields)
        if n < 6 or (n == 6 and fields["year"] <= 1899):
            n = scan(text, "%3s %d %d:%d:%d %5s %d", ("name", "day", *TIME, "zone", "year"), fields)
            n = 3 if n == 2 else n
    return n


def _scan_from_number(text, fields):
    n = scan(text, "%d %3s %d %d:%d:%d %5s", ("day", "name", "year", *TIME, "zone"), fields)
    rows = (
        (n >= 2 and fields["day"] >= 101 and "T" in text,
         "%d-%d-%dT%d:%d:%d%6s", ("year", "month", "day", *TIME, "zone")),
        (n >= 2 and "/" in text,
         "%d/%d/%d %d:%d:%d %5s", ("month", "day", "year", *TIME, "zone")),
        (n >= 2 and "-" in text,
         "%d-%d-%d %d:%d:%d %5s", ("day", "month", "year", *TIME, "zone")),
        (n == 2, "%d.%d.%d %d:%d:%d %5s", ("day", "month", "year", *TIME, "zone")),
    )
    for applies, pattern, names in rows:
        if applies:
            fields["name"] = ""
            return scan(text, pattern, names, fields)
    if n != 2 and len(text) == 8:
        return scan(text, "%4d%2d%2d", ("year", "month", "day"), fields)
    return n


def _zone_of(text):
    parts = {"hours": 0, "minutes": 0}
    pattern = "%03d:%02d" if ":" in text else "%03d%02d"
    if scan(text, pattern, ("hours", "minutes"), parts) >= 1:
        minutes = -parts["minutes"] if parts["hours"] < 0 else parts["minutes"]
        return parts["hours"] * 60 + minutes
    return ZONE_OF_NAME.get(text.lower(), UNSET)


def parse(text):
    text = text.lstrip()
    for names in WEEKDAYS:
        length = len(names[0])
        if text[:length].lower() in names:
            text = text[length:]
            break
    text = text.removeprefix(",").lstrip()
    fields = dict(year=-1, month=0, day=0, hour=0, minute=0, second=0, name="", zone="")
    n = (_scan_from_number if text[:1].isdigit() else _scan_from_name)(text, fields)
    if fields["day"] > 100 and fields["year"] < 32:
        fields["day"], fields["year"] = fields["year"], fields["day"]
    if n < 3:
        return EMPTY
    if fields["name"]:
        fields["month"] = MONTHS.get(fields["name"].lower(), fields["month"])
    if 0 <= fields["year"] <= 99:
        fields["year"] += 2000 if fields["year"] <= 79 else 1900
    local = tuple(fields[name] & 0xFFFF for name in ("year", "month", "day", *TIME))
    zone = _zone_of(fields["zone"]) if fields["zone"] else UNSET
    if -1439 <= zone <= 1439:
        return moved(local, -zone), zone
    if n < 4:
        return local, 0
    return moved(local, -summer_or_winter(local)), present_offset()


def is_date(fields):
    """Whether the system can turn the fields into a file time."""
    year, month, day, hour, minute, second = fields
    return (1601 <= year <= 30827 and 1 <= month <= 12
            and 1 <= day <= calendar.monthrange(year if year <= 9999 else 2000, month)[1]
            and hour < 24 and minute < 60 and second < 60)


def moved(fields, minutes):
    """The fields so many minutes later; as they are where they are no date."""
    if not is_date(fields):
        return fields
    return tuple((datetime(*fields) + timedelta(minutes=minutes)).timetuple()[:6])


def present_offset():
    """Minutes east of UTC now: what a date without a zone of its own is shown in."""
    return int(datetime.now(BERLIN).utcoffset().total_seconds()) // 60


def summer_or_winter(fields):
    """Minutes east of UTC on that day. Summer time counts for whole days: from the last Sunday of
    March up to the day before the last Sunday of October."""
    def last_sunday(month):
        days = calendar.monthcalendar(fields[0], month)
        return max(week[calendar.SUNDAY] for week in days)

    if not is_date(fields):
        return 60
    day = fields[1:3]
    return 120 if (3, last_sunday(3)) <= day < (10, last_sunday(10)) else 60


def pictured(fields, picture):
    """The fields by a picture of d, dd, M, MM and yyyy."""
    values = {"yyyy": f"{fields[0]:04d}", "MM": f"{fields[1]:02d}", "M": str(fields[1]),
              "dd": f"{fields[2]:02d}", "d": str(fields[2])}
    return re.sub("yyyy|MM?|dd?", lambda match: values[match[0]], picture)


def shown(date, picture):
    """The usual display: the locale's short date, and the time unless the stored one is 0:00:00."""
    fields, zone = date
    if fields[1] == 0:
        return ""
    local = moved(fields, zone)
    day = pictured(local, picture) if is_date(local) else ""
    return day if fields[3:] == (0, 0, 0) else f"{day} {local[3]:02d}:{local[4]:02d}"


def merged(text, date, picture):
    """A date read as text meets one from a file time; the text of the cell."""
    if text:
        parsed = parse(text)
        if parsed[0][1]:
            loses_time = (date[0][1] and parsed[0][3:] == (0, 0, 0)
                          and parsed[0][:3] == date[0][:3])
            date = date if loses_time else parsed
    return shown(date, picture) if date[0][1] else text


def from_seconds(seconds):
    """A number of seconds since 1970, by way of the runtime's fixed form of local time."""
    return parse(datetime.fromtimestamp(seconds, BERLIN).strftime("%a %b %e %H:%M:%S %Y"))


def utc_of(file_time):
    return datetime(1601, 1, 1, tzinfo=timezone.utc) + timedelta(microseconds=file_time // 10)


def from_write_time(file_time):
    """A key's last write time, local by the offset of the present moment."""
    local = utc_of(file_time) + timedelta(minutes=present_offset())
    return tuple(local.timetuple()[:6]), 0
