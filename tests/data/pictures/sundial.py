#!/usr/bin/env python3
"""Where the shadow of a sundial falls: the angle of each hour line."""
from dataclasses import dataclass
from math import atan2, cos, degrees, radians, sin, tan

HOURS = range(6, 19)


@dataclass(frozen=True)
class Place:
    name: str
    latitude: float  # degrees north
    longitude: float  # degrees east

    def __str__(self):
        return f"{self.name} ({self.latitude:.1f}° N, {self.longitude:.1f}° E)"


PLACES = [
    Place("Göttingen", 51.5, 9.9),
    Place("Zürich", 47.4, 8.5),
    Place("Tromsø", 69.6, 18.9),
]


def hour_line(place, hour, zone=1):
    """Degrees from noon, as the sun has it rather than the clock."""
    solar = hour + place.longitude / 15 - zone
    angle = radians(15 * (solar - 12))
    return degrees(atan2(sin(radians(place.latitude)) * tan(angle), 1))


def dial(place, width=60):
    lines = []
    for hour in HOURS:
        column = round((hour_line(place, hour) + 90) / 180 * width)
        lines.append(f"{hour:2}:00 |" + " " * column + "●")
    return "\n".join(lines)


if __name__ == "__main__":
    for place in PLACES:
        print(place, dial(place), sep="\n", end="\n\n")
