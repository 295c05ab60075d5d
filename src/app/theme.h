// The program's look: the desktop's own style and palette (light or dark, as the desktop has
// it), or a dark theme of its own for dark venues (Fusion with a dark palette). Every window,
// the response graph included, paints from the palette, so one switch reaches them all. The
// choice is kept in the settings file of the configuration folder.
#pragma once

#include <QPalette>
#include <filesystem>

class QAction;
class QObject;

namespace talvex::app {

enum class Theme { Desktop, Dark };

// Our own settings, beside the configuration files ("TenDev.cfg", ...): an INI file.
inline constexpr const char* kSettingsFile = "talvex.ini";
inline constexpr const char* kDarkThemeCaption = "&Dark theme";

// The theme kept in `configFolder`; Desktop when nothing (or nothing readable) is kept.
Theme ReadTheme(const std::filesystem::path& configFolder);
// Keeps the theme; false when the file cannot be written (the theme still applies this run).
bool WriteTheme(const std::filesystem::path& configFolder, Theme theme);

// The dark palette: light text on dark grey, every role and group set, contrasts for text of
// at least 7:1 (disabled text 3:1).
QPalette DarkPalette();

// Applies the theme to the whole application. The first call remembers the desktop's style, so
// that going back to Desktop restores it, with the platform's palette.
void ApplyTheme(Theme theme);
Theme CurrentTheme();

// A checkable "Dark theme" action that applies and keeps the theme.
QAction* MakeThemeAction(const std::filesystem::path& configFolder, QObject* parent);

}  // namespace talvex::app
