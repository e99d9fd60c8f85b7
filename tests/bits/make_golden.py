#!/usr/bin/env python3
"""Writes literals.txt and seeds.txt anew, by a writing of the rules that shares nothing with ours.

    tests/bits/make_golden.py [--check]    with --check compares the files instead

Python's floats are IEEE doubles, rounded after every operation; pow and sin are those of libm.
"""
import math
import pathlib
import struct
import sys

LITERALS = 10_000
DRAWS = 1_000_000
CLEAR = 10_000  # every so many draws stand in the file themselves
INT_MIN = -(2**31)
MASK = 2**64 - 1
DIGITS = "0123456789"


class Dice:
    """The same numbers with every version of Python."""

    def __init__(self):
        self.state = 20240131

    def below(self, limit):
        self.state = (self.state * 6364136223846793005 + 1442695040888963407) & MASK
        return (self.state >> 33) % limit

    def one_of(self, choices):
        return choices[self.below(len(choices))]

    def digits(self, number):
        return "".join(self.one_of(DIGITS) for _ in range(number))


# ---- the rules of number literals ----------------------------------------------------------------


def power(exponent):
    try:
        return math.pow(10.0, exponent)
    except OverflowError:
        return math.inf


def leading_digits(text, i, value):
    while i < len(text) and text[i] in DIGITS:
        value = value * 10.0 + float(DIGITS.index(text[i]))
        i += 1
    return value, i


def with_exponent(text, j, value):
    sign = 1.0
    if text[j : j + 1] == "+":
        j += 1
    if text[j : j + 1] == "-":
        j += 1
        sign = -1.0
    if j >= len(text) or text[j] not in DIGITS:
        return value
    exponent, _ = leading_digits(text, j, 0.0)
    return value * power(sign * exponent)


def special(text, i, value):
    kind = text[i : i + 1].lower()
    if kind == "q":
        return 0.0
    if kind == "i":
        last = text[i + 2 : i + 3].lower()
        return {"f": float.fromhex("0x1.bc16d6p+59"), "d": 0.0}.get(last, value)
    return value


def unsigned_value(text):
    if text == "nan":
        return 0.0
    value, i = leading_digits(text, 0, 0.0)
    point = text[i : i + 1] == "."
    if point:
        i += 1
        scale = 0.1
        while i < len(text) and text[i] in DIGITS:
            part = float(DIGITS.index(text[i])) * scale
            value = value + part
            scale = scale * 0.1
            i += 1
    mark = text[i : i + 1]
    if mark in ("e", "E"):
        return with_exponent(text, i + 1, value)
    if point and mark == "#":
        return special(text, i + 1, value)
    return value


def literal_value(literal):
    value = unsigned_value(literal.lstrip("+-"))
    return -value if literal.startswith("-") else value


def double_bits(value):
    return "nan" if math.isnan(value) else struct.pack(">d", value).hex()


def float_bits(value):
    if math.isnan(value):
        return "nan"
    try:
        return struct.pack(">f", value).hex()
    except OverflowError:
        return struct.pack(">f", math.copysign(math.inf, value)).hex()


def int_value(value):
    if math.isnan(value) or math.isinf(value):
        return INT_MIN
    whole = math.trunc(value)
    return whole if INT_MIN <= whole < 2**31 else INT_MIN


# ---- literals of all forms -----------------------------------------------------------------------

BOUNDARIES = """
0 0.0 nan NaN nanx 0e400 -0e400 0.0e999 2147483647 2147483648 -2147483647 -2147483648 -2147483649
2147483647.5 2147483647.9999999 -2147483648.5 -2147483648.9999999 4294967295 4294967296 -4294967296
3000000000 -3000000000 1e9 1e10 -1e10 1e20 -1e20 1e400 -1e400 2.9 -2.9 -0.9 0.9 9007199254740993
9007199254740992 9223372036854775807 18446744073709551616 16777216 16777217 16777219 33554431
3.4028234e38 3.4028235e38 3.4028236e38 3.40282356e38 3.40282357e38 3.5e38 -3.5e38 1e39 1e-45
1.4e-45 7e-46 7.1e-46 1.17549435e-38 1.17549421e-38 1e-38 1e-39 4.9e-324 2.4e-324 2.5e-324
2.2250738585072014e-308 2.2250738585072011e-308 1.7976931348623157e308 1.7976931348623159e308
1.#INF -1.#INF 1.#IND 1.#QNAN 1.#inf 1.#ind 1.#qnan 1.#q 1.#Q 0.#INF .#INF 1#INF 1.#INX 1.#I 1.#IN
1.# 1. . .. 1.. 1.2.3 e e5 .e5 1e 1ex 1e+ 1e- 1e+- 1e-+5 1e--5 1e++5 1e+-5 1e+5 1E5 1E+-5 12abc x
""".split()


def integer(dice):
    return dice.digits(1 + dice.below(40))


def long_integer(dice):
    return dice.digits(41 + dice.below(360))


def fraction(dice):
    return dice.digits(dice.below(20)) + "." + dice.digits(dice.below(25))


def long_fraction(dice):
    return dice.digits(dice.below(60)) + "." + dice.digits(25 + dice.below(300))


def small(dice):
    return dice.digits(1 + dice.below(10)) + dice.one_of(("", ".", "." + dice.digits(3)))


def mantissa(dice):
    return dice.one_of((integer, fraction, fraction))(dice)


def usual_exponent(dice):
    mark = dice.one_of(("e", "E")) + dice.one_of(("", "+", "-", "+-"))
    return mantissa(dice) + mark + str(dice.below(345))


def odd_exponent(dice):
    mark = dice.one_of("eE") + dice.one_of(("", "+", "-", "+-", "-+", "++"))
    number = "0" * dice.below(12) + dice.digits(dice.below(8)) + dice.one_of(("", "", "x", ".5"))
    return mantissa(dice) + mark + number


def special_form(dice):
    letters = "".join(dice.one_of("iInNfFdDqQaA") for _ in range(dice.below(5)))
    return fraction(dice) + "#" + dice.one_of(("INF", "IND", "QNAN", "inf", letters, letters))


def cut(dice):
    whole = dice.one_of((fraction, usual_exponent, odd_exponent, special_form))(dice)
    return whole[: 1 + dice.below(len(whole))]


def followed(dice):
    return mantissa(dice) + "".join(dice.one_of("0.eE+-#xnI_") for _ in range(1 + dice.below(5)))


# So many literals of 100 have each form.
FORMS = (
    [integer] * 12 + [small] * 16 + [long_integer] * 2 + [fraction] * 20 + [long_fraction] * 2
    + [usual_exponent] * 22 + [odd_exponent] * 8 + [special_form] * 7 + [cut] * 7 + [followed] * 4
)  # fmt: skip


def depends_on_the_cpu(literal):
    """The one power of ten that libm's variants for different processors round differently."""
    return abs(power_asked_for(literal)) == 126.0


def power_asked_for(literal):
    asked = []
    global power
    honest, power = power, lambda exponent: asked.append(exponent) or 1.0
    unsigned_value(literal.lstrip("+-"))
    power = honest
    return asked[0] if asked else 0.0


def all_literals():
    dice = Dice()
    literals = dict.fromkeys(BOUNDARIES)
    literals.update((f"1e{e}", None) for e in range(-330, 331) if abs(e) != 126)
    while len(literals) < LITERALS:
        sign = dice.one_of(("", "", "", "-", "-", "+", "-+"))
        literal = sign + dice.one_of(FORMS)(dice)
        # A sign alone is no literal.
        if literal != sign and not depends_on_the_cpu(literal):
            literals[literal] = None
    return literals


def literals_file():
    yield "# Number literals, each with the bits of its double, those of its float, and its int."
    for literal in all_literals():
        value = literal_value(literal)
        yield f"{literal} {double_bits(value)} {float_bits(value)} {int_value(value)}"


# ---- seeds ---------------------------------------------------------------------------------------


def next_draw(state):
    state = (state * 25214903917 + 11) & MASK
    signed = state - 2**64 if state >= 2**63 else state
    sine = math.sin(float(signed >> 16))
    (upper,) = struct.unpack(">I4x", struct.pack(">d", sine))
    state = (state + upper) & (2**48 - 1)
    (seed,) = struct.unpack(">I", struct.pack(">f", (state >> 18) * 2.0**-30))
    return state, seed


def seeds_file():
    yield f"# Draws from state 0: number, state and bits of the seed of every {CLEAR:,}th; then the"
    yield "# FNV-1a digest, word by word, of state and seed of all."
    state = 0
    digest = 0xCBF29CE484222325
    for draw in range(1, DRAWS + 1):
        state, seed = next_draw(state)
        for word in (state, seed):
            digest = ((digest ^ word) * 0x100000001B3) & MASK
        if draw % CLEAR == 0:
            yield f"{draw} {state:012x} {seed:08x}"
    yield f"digest {digest:016x}"


def main():
    here = pathlib.Path(__file__).parent
    differing = 0
    for name, lines in (("literals.txt", literals_file()), ("seeds.txt", seeds_file())):
        text = "".join(line + "\n" for line in lines)
        if "--check" not in sys.argv:
            (here / name).write_text(text)
        elif (here / name).read_text() != text:
            print(f"{here / name} differs from what the rules give", file=sys.stderr)
            differing = 1
    return differing


if __name__ == "__main__":
    sys.exit(main())
