// The decimal mark of the user's language, decided once at start-up. Typed numbers are read with
// either mark; numbers the program shows, and the width labels, are written with this one.
#pragma once

namespace talvex::params {

enum class DecimalMark { Point, Comma };

constexpr char MarkChar(DecimalMark mark) {
  return mark == DecimalMark::Comma ? ',' : '.';
}

// The locale flag of the start-up (1 = the language writes a decimal comma).
constexpr DecimalMark DecimalMarkOf(int commaDecimal) {
  return commaDecimal == 1 ? DecimalMark::Comma : DecimalMark::Point;
}

}  // namespace talvex::params
