"""Text forms of the project files shared by the sample makers: numbers as
the program writes single-precision fields, and category value lists."""
import struct


def single(value):
    """The shortest decimal text that reads back as the same single-precision
    float, in plain (not exponent) notation."""
    f32 = struct.unpack("<f", struct.pack("<f", value))[0]
    if f32 == 0.0:
        return "0"
    for digits in range(1, 10):
        text = "%.*g" % (digits, f32)
        if struct.unpack("<f", struct.pack("<f", float(text)))[0] == f32:
            break
    if "e" in text:
        text = format(float(text), "f").rstrip("0").rstrip(".")
    return text


def category_list(values):
    return "".join(str(v).strip() + " |" for v in values)


def nat_text(title, category_names, category_types):
    """The .nat file of a project without a natal chart of its own."""
    strings = [title, "", "", "Unknown", "", "", "", "", "", "0:00 am", "11:59 pm"]
    lines = [
        "VINTAR 2",
        ",".join(f'"{s}"' for s in strings),
        f'"{category_list(category_names)}","{category_list(category_types)}"',
    ]
    return "".join(line + "\r\n" for line in lines)
