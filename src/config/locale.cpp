#include "config/locale.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

#ifdef _WIN32
#include <windows.h>
#endif

namespace talvex::config {

const std::array<std::string_view, 81> kCommaLanguageIds = {
    "041c", "082c", "042c", "042a", "0423", "201a", "141a", "0402", "0403", "041a", "101a", "0405",
    "0406", "0831", "0413", "0425", "0438", "040b", "080c", "0c0c", "140c", "180c", "0462", "0456",
    "0437", "0c07", "0407", "1007", "0408", "040e", "040f", "0421", "0410", "043f", "0440", "0426",
    "0427", "083e", "043e", "0450", "0414", "0841", "0415", "0816", "046b", "086b", "0c6b", "0418",
    "0419", "0243", "0103", "0143", "00c3", "0043", "0083", "0203", "0183", "01c3", "1c1a", "181a",
    "0c1a", "081a", "041b", "0424", "2c0a", "400a", "240a", "340a", "140a", "300a", "3c0a", "040a",
    "380a", "200a", "081d", "041d", "0444", "041f", "0422", "0843", "0443",
};

namespace {

// POSIX locale names (language_TERRITORY, "@cyrillic" for the Cyrillic variant where the
// language has two scripts) and the Windows language identifier each corresponds to. It covers
// every language of the comma list that has a locale on such systems, and the common languages
// that write a point.
constexpr std::pair<std::string_view, std::string_view> kLocaleIds[] = {
    {"C", "0409"},
    {"POSIX", "0409"},
    {"af_ZA", "0436"},
    {"ar_AE", "3801"},
    {"ar_EG", "0c01"},
    {"ar_SA", "0401"},
    {"az_AZ", "042c"},
    {"az_AZ@cyrillic", "082c"},
    {"be_BY", "0423"},
    {"bg_BG", "0402"},
    {"bn_IN", "0445"},
    {"bs_BA", "141a"},
    {"bs_BA@cyrillic", "201a"},
    {"ca_ES", "0403"},
    {"cs_CZ", "0405"},
    {"cy_GB", "0452"},
    {"da_DK", "0406"},
    {"de_AT", "0c07"},
    {"de_CH", "0807"},
    {"de_DE", "0407"},
    {"de_LI", "1407"},
    {"de_LU", "1007"},
    {"el_GR", "0408"},
    {"en_AU", "0c09"},
    {"en_CA", "1009"},
    {"en_GB", "0809"},
    {"en_HK", "3c09"},
    {"en_IE", "1809"},
    {"en_IN", "4009"},
    {"en_NZ", "1409"},
    {"en_PH", "3409"},
    {"en_SG", "4809"},
    {"en_US", "0409"},
    {"en_ZA", "1c09"},
    {"es_AR", "2c0a"},
    {"es_BO", "400a"},
    {"es_CL", "340a"},
    {"es_CO", "240a"},
    {"es_CR", "140a"},
    {"es_DO", "1c0a"},
    {"es_EC", "300a"},
    {"es_ES", "0c0a"},
    {"es_GT", "100a"},
    {"es_HN", "480a"},
    {"es_MX", "080a"},
    {"es_NI", "4c0a"},
    {"es_PA", "180a"},
    {"es_PE", "280a"},
    {"es_PR", "500a"},
    {"es_PY", "3c0a"},
    {"es_SV", "440a"},
    {"es_US", "540a"},
    {"es_UY", "380a"},
    {"es_VE", "200a"},
    {"et_EE", "0425"},
    {"eu_ES", "042d"},
    {"fa_IR", "0429"},
    {"fi_FI", "040b"},
    {"fo_FO", "0438"},
    {"fr_BE", "080c"},
    {"fr_CA", "0c0c"},
    {"fr_CH", "100c"},
    {"fr_FR", "040c"},
    {"fr_LU", "140c"},
    {"fr_MC", "180c"},
    {"fy_NL", "0462"},
    {"ga_IE", "083c"},
    {"gl_ES", "0456"},
    {"he_IL", "040d"},
    {"hi_IN", "0439"},
    {"hr_BA", "101a"},
    {"hr_HR", "041a"},
    {"hu_HU", "040e"},
    {"hy_AM", "042b"},
    {"id_ID", "0421"},
    {"is_IS", "040f"},
    {"it_CH", "0810"},
    {"it_IT", "0410"},
    {"ja_JP", "0411"},
    {"ka_GE", "0437"},
    {"kk_KZ", "043f"},
    {"ko_KR", "0412"},
    {"ky_KG", "0440"},
    {"lt_LT", "0427"},
    {"lv_LV", "0426"},
    {"mk_MK", "042f"},
    {"mn_MN", "0450"},
    {"ms_BN", "083e"},
    {"ms_MY", "043e"},
    {"mt_MT", "043a"},
    {"nb_NO", "0414"},
    {"nl_BE", "0813"},
    {"nl_NL", "0413"},
    {"nn_NO", "0814"},
    {"no_NO", "0414"},
    {"pl_PL", "0415"},
    {"pt_BR", "0416"},
    {"pt_PT", "0816"},
    {"quz_BO", "046b"},
    {"quz_EC", "086b"},
    {"quz_PE", "0c6b"},
    {"ro_RO", "0418"},
    {"ru_RU", "0419"},
    {"sk_SK", "041b"},
    {"sl_SI", "0424"},
    {"sq_AL", "041c"},
    {"sr_BA", "181a"},
    {"sr_BA@cyrillic", "1c1a"},
    {"sr_CS", "081a"},
    {"sr_CS@cyrillic", "0c1a"},
    {"sr_ME", "2c1a"},
    {"sr_RS", "241a"},
    {"sr_RS@cyrillic", "281a"},
    {"sv_FI", "081d"},
    {"sv_SE", "041d"},
    {"sw_KE", "0441"},
    {"ta_IN", "0449"},
    {"th_TH", "041e"},
    {"tr_TR", "041f"},
    {"tt_RU", "0444"},
    {"uk_UA", "0422"},
    {"ur_PK", "0420"},
    {"uz_UZ", "0443"},
    {"uz_UZ@cyrillic", "0843"},
    {"vi_VN", "042a"},
    {"zh_CN", "0804"},
    {"zh_HK", "0c04"},
    {"zh_SG", "1004"},
    {"zh_TW", "0404"},
};

// A bare language name takes its language's main territory.
constexpr std::pair<std::string_view, std::string_view> kDefaultTerritory[] = {
    {"af", "af_ZA"}, {"ar", "ar_SA"}, {"az", "az_AZ"}, {"be", "be_BY"},   {"bg", "bg_BG"},
    {"bs", "bs_BA"}, {"ca", "ca_ES"}, {"cs", "cs_CZ"}, {"cy", "cy_GB"},   {"da", "da_DK"},
    {"de", "de_DE"}, {"el", "el_GR"}, {"en", "en_US"}, {"es", "es_ES"},   {"et", "et_EE"},
    {"eu", "eu_ES"}, {"fa", "fa_IR"}, {"fi", "fi_FI"}, {"fo", "fo_FO"},   {"fr", "fr_FR"},
    {"fy", "fy_NL"}, {"ga", "ga_IE"}, {"gl", "gl_ES"}, {"he", "he_IL"},   {"hi", "hi_IN"},
    {"hr", "hr_HR"}, {"hu", "hu_HU"}, {"hy", "hy_AM"}, {"id", "id_ID"},   {"is", "is_IS"},
    {"it", "it_IT"}, {"ja", "ja_JP"}, {"ka", "ka_GE"}, {"kk", "kk_KZ"},   {"ko", "ko_KR"},
    {"ky", "ky_KG"}, {"lt", "lt_LT"}, {"lv", "lv_LV"}, {"mk", "mk_MK"},   {"mn", "mn_MN"},
    {"ms", "ms_MY"}, {"mt", "mt_MT"}, {"nb", "nb_NO"}, {"nl", "nl_NL"},   {"nn", "nn_NO"},
    {"no", "nb_NO"}, {"pl", "pl_PL"}, {"pt", "pt_PT"}, {"quz", "quz_PE"}, {"ro", "ro_RO"},
    {"ru", "ru_RU"}, {"sk", "sk_SK"}, {"sl", "sl_SI"}, {"sq", "sq_AL"},   {"sr", "sr_RS"},
    {"sv", "sv_SE"}, {"th", "th_TH"}, {"tr", "tr_TR"}, {"tt", "tt_RU"},   {"uk", "uk_UA"},
    {"uz", "uz_UZ"}, {"vi", "vi_VN"}, {"zh", "zh_CN"},
};

std::optional<std::string_view> Lookup(const auto& table, std::string_view key) {
  for (const auto& [name, id] : table)
    if (name == key) return id;
  return std::nullopt;
}

}  // namespace

int CommaDecimalFor(std::string_view languageId) {
  return std::find(kCommaLanguageIds.begin(), kCommaLanguageIds.end(), languageId) !=
                 kCommaLanguageIds.end()
             ? 1
             : 0;
}

std::optional<std::string> WindowsLanguageId(std::string_view posixLocale) {
  // "de_DE.UTF-8@euro": drop the encoding, keep a script modifier such as "@cyrillic".
  std::string_view modifier;
  if (const auto at = posixLocale.find('@'); at != std::string_view::npos) {
    modifier = posixLocale.substr(at);
    posixLocale = posixLocale.substr(0, at);
  }
  posixLocale = posixLocale.substr(0, posixLocale.find('.'));
  std::string name(posixLocale);
  if (name.find('_') == std::string::npos) {
    if (const auto territory = Lookup(kDefaultTerritory, name)) name = std::string(*territory);
  }
  if (modifier == "@cyrillic") {
    if (const auto id = Lookup(kLocaleIds, name + std::string(modifier))) return std::string(*id);
  }
  if (modifier == "@latin" || modifier.empty() || modifier == "@euro") {
    if (const auto id = Lookup(kLocaleIds, name)) return std::string(*id);
  }
  return std::nullopt;
}

std::optional<std::string> UserLanguageId() {
#ifdef _WIN32
  char buffer[1024] = {};
  const int length = GetLocaleInfoA(LOCALE_USER_DEFAULT, LOCALE_ILANGUAGE, buffer, sizeof buffer);
  if (length <= 1) return std::nullopt;
  return std::string(buffer, static_cast<std::size_t>(length - 1));
#else
  for (const char* variable : {"LC_ALL", "LC_NUMERIC", "LANG"}) {
    const char* value = std::getenv(variable);
    if (value && *value) return WindowsLanguageId(value);
  }
  return std::nullopt;
#endif
}

int DetectCommaDecimal() {
  const auto id = UserLanguageId();
  return id ? CommaDecimalFor(*id) : 0;
}

}  // namespace talvex::config
