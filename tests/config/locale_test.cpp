#include "config/locale.h"

#include <gtest/gtest.h>

namespace talvex::config {
namespace {

TEST(LocaleTest, shouldDeriveTheWindowsLanguageIdentifier) {
  const std::pair<const char*, const char*> cases[] = {
      {"de_DE", "0407"},       {"de_DE.UTF-8", "0407"},
      {"en_US.UTF-8", "0409"}, {"de_AT", "0c07"},
      {"fr_CA", "0c0c"},       {"sr_BA@cyrillic", "1c1a"},
      {"sr_BA@latin", "181a"}, {"uz_UZ@cyrillic", "0843"},
      {"de", "0407"},          {"pt_BR.UTF-8", "0416"},
      {"C", "0409"},           {"sq_AL", "041c"},
  };
  for (const auto& [locale, id] : cases)
    EXPECT_EQ(WindowsLanguageId(locale), id) << locale;
  EXPECT_EQ(WindowsLanguageId("xx_YY"), std::nullopt);
  EXPECT_EQ(WindowsLanguageId(""), std::nullopt);
}

TEST(LocaleTest, shouldChooseTheCommaOnlyForListedLanguages) {
  const std::pair<const char*, int> cases[] = {
      {"de_DE", 1},
      {"ru_RU", 1},
      {"es_AR", 1},
      {"fr_BE", 1},
      {"it_IT", 1},
      {"en_US", 0},
      {"en_GB", 0},
      {"ja_JP", 0},
      {"de_CH", 0},
      // Omitted from the list, and kept so: they write the point here.
      {"fr_FR", 0},
      {"es_ES", 0},
      {"pt_BR", 0},
  };
  for (const auto& [locale, comma] : cases)
    EXPECT_EQ(CommaDecimalFor(*WindowsLanguageId(locale)), comma) << locale;
  EXPECT_EQ(CommaDecimalFor("0407"), 1);
  EXPECT_EQ(CommaDecimalFor("0409"), 0);
  EXPECT_EQ(CommaDecimalFor("0407 "), 0);  // compared as text
  EXPECT_EQ(kCommaLanguageIds.front(), "041c");
  EXPECT_EQ(kCommaLanguageIds.back(), "0443");
}

}  // namespace
}  // namespace talvex::config
