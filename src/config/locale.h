// The decimal mark of the user's language. The device's tools compare the Windows language
// identifier of the user's locale (four hexadecimal digits, e.g. "0407") with a fixed list;
// a match means the language writes decimals with a comma.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>

namespace talvex::config {

// The 81 identifiers that select the comma, in their order. The list is kept exactly as the
// device's tools have it, omissions included (Spanish with modern sorting, "0c0a", and
// Brazilian Portuguese, "0416", keep the point).
extern const std::array<std::string_view, 81> kCommaLanguageIds;

// 1 when `languageId` is in the list, else 0. Compared as text.
int CommaDecimalFor(std::string_view languageId);

// The Windows language identifier of a POSIX locale name ("de_DE", "de_DE.UTF-8",
// "sr_RS@latin", "en"), lower-case, or nullopt for a locale we don't know (which keeps the point).
std::optional<std::string> WindowsLanguageId(std::string_view posixLocale);

// The language identifier of the user's locale: on Windows from the user's default locale, on
// other systems derived from LC_ALL, LC_NUMERIC or LANG (the first that is set).
std::optional<std::string> UserLanguageId();

// `CommaDecimal` for this user, decided once at start-up.
int DetectCommaDecimal();

}  // namespace talvex::config
