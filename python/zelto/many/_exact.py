"""Sums without rounding, and the numbers that follow from them.

Parts of scenes, scenes and machines each give sums that are whole numbers of a tiny unit. They
are added as Python's own whole numbers, so that a total is the same whatever was added first, and
every result is that of the exact total, rounded once.
"""

from __future__ import annotations

import math
from dataclasses import dataclass, field
from typing import Dict, List, Sequence, Tuple

#: Sums count units of two to the power of minus this.
_UNIT_BITS = 2148
#: More bits than a double has, for roots.
_ROOT_BITS = 80


def whole_number(data: bytes) -> int:
    return int.from_bytes(data, "little", signed=True)


def _quotient(numerator: int, denominator: int) -> float:
    """Rounded to the nearest double; infinite where there is none."""
    try:
        return numerator / denominator
    except OverflowError:
        return math.inf if (numerator > 0) == (denominator > 0) else -math.inf


def _root_quotient(numerator: int, denominator: int) -> float:
    """The root of numerator, which is not negative, over denominator."""
    shift = 2 * max(_ROOT_BITS - numerator.bit_length() // 2, 0)
    return _quotient(math.isqrt(numerator << shift), denominator << (shift // 2))


@dataclass
class BandSums:
    """Of a band's values."""

    count: int = 0
    minimum: float = math.nan
    maximum: float = math.nan
    #: In units.
    total: int = 0
    squares: int = 0

    def add(self, other: "BandSums") -> None:
        if other.count > 0:
            first = self.count == 0
            least = other.minimum if first else min(self.minimum, other.minimum)
            greatest = other.maximum if first else max(self.maximum, other.maximum)
            # Which of two zeros comes first must not show: both become the positive one.
            self.minimum, self.maximum = least + 0.0, greatest + 0.0
        self.count += other.count
        self.total += other.total
        self.squares += other.squares

    def mean(self) -> float:
        return _quotient(self.total, self.count << _UNIT_BITS) if self.count else math.nan

    def standard_deviation(self) -> float:
        """Of the population: the root of count · squares − total², over the count."""
        if not self.count:
            return math.nan
        spread = self.count * (self.squares << _UNIT_BITS) - self.total**2
        return _root_quotient(spread, self.count << _UNIT_BITS)


@dataclass
class ProductSums:
    """Of the pixels that have a value in every band."""

    count: int = 0
    totals: List[int] = field(default_factory=list)
    #: Of bands (0, 0), (1, 0), (1, 1), (2, 0) …
    products: List[int] = field(default_factory=list)

    def add(self, other: "ProductSums") -> None:
        if not self.totals:
            self.totals = [0] * len(other.totals)
            self.products = [0] * len(other.products)
        self.count += other.count
        self.totals = [a + b for a, b in zip(self.totals, other.totals)]
        self.products = [a + b for a, b in zip(self.products, other.products)]

    def matrix(self) -> List[List[float]]:
        """Covariances in the population form; all 0 without pixels."""
        side = len(self.totals)
        found = [[0.0] * side for _ in range(side)]
        pair = 0
        for a in range(side):
            for b in range(a + 1):
                if self.count:
                    spread = self.count * (self.products[pair] << _UNIT_BITS)
                    spread -= self.totals[a] * self.totals[b]
                    value = _quotient(spread, self.count**2 << (2 * _UNIT_BITS))
                    found[a][b] = found[b][a] = value
                pair += 1
        return found


def band_sums(
    found: Sequence[Tuple[int, int, float, float, bytes, bytes]]
) -> Dict[int, BandSums]:
    """What the engine's module tells, by the band's number."""
    return {
        band: BandSums(count, least, greatest, whole_number(total), whole_number(squares))
        for band, count, least, greatest, total, squares in found
    }


def product_sums(found: Tuple[int, Sequence[bytes], Sequence[bytes]]) -> ProductSums:
    count, totals, products = found
    return ProductSums(
        count, [whole_number(t) for t in totals], [whole_number(p) for p in products]
    )
