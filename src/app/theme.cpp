#include "app/theme.h"

#include <QAction>
#include <QApplication>
#include <QSettings>
#include <QStyle>
#include <QStyleFactory>

namespace talvex::app {

namespace {

constexpr const char* kThemeKey = "appearance/theme";
constexpr const char* kDarkValue = "dark";
constexpr const char* kDesktopValue = "desktop";
// Kept on the application object: the desktop's look before the first switch.
constexpr const char* kDesktopStyleProperty = "talvexDesktopStyle";
constexpr const char* kThemeProperty = "talvexTheme";

QString SettingsPath(const std::filesystem::path& configFolder) {
  return QString::fromStdString((configFolder / kSettingsFile).string());
}

void RememberDesktopLook() {
  if (qApp->property(kDesktopStyleProperty).isValid()) return;
  qApp->setProperty(kDesktopStyleProperty, QApplication::style()->name());
}

}  // namespace

Theme ReadTheme(const std::filesystem::path& configFolder) {
  const QSettings settings(SettingsPath(configFolder), QSettings::IniFormat);
  return settings.value(kThemeKey).toString() == kDarkValue ? Theme::Dark : Theme::Desktop;
}

bool WriteTheme(const std::filesystem::path& configFolder, Theme theme) {
  QSettings settings(SettingsPath(configFolder), QSettings::IniFormat);
  settings.setValue(kThemeKey, theme == Theme::Dark ? kDarkValue : kDesktopValue);
  settings.sync();
  return settings.status() == QSettings::NoError;
}

QPalette DarkPalette() {
  const QColor window(0x2b, 0x2d, 0x31);
  const QColor base(0x1e, 0x1f, 0x22);
  const QColor text(0xe8, 0xe8, 0xe8);
  const QColor disabledText(0x80, 0x80, 0x80);
  const QColor highlight(0x3d, 0x7e, 0xd8);
  QPalette palette;
  palette.setColor(QPalette::Window, window);
  palette.setColor(QPalette::WindowText, text);
  palette.setColor(QPalette::Base, base);
  palette.setColor(QPalette::AlternateBase, window);
  palette.setColor(QPalette::ToolTipBase, base);
  palette.setColor(QPalette::ToolTipText, text);
  palette.setColor(QPalette::PlaceholderText, disabledText);
  palette.setColor(QPalette::Text, text);
  palette.setColor(QPalette::Button, QColor(0x3a, 0x3d, 0x42));
  palette.setColor(QPalette::ButtonText, text);
  palette.setColor(QPalette::BrightText, QColor(0xff, 0x6b, 0x6b));
  palette.setColor(QPalette::Light, QColor(0x55, 0x58, 0x5e));
  palette.setColor(QPalette::Midlight, QColor(0x46, 0x49, 0x4e));
  palette.setColor(QPalette::Mid, QColor(0x6c, 0x70, 0x77));
  palette.setColor(QPalette::Dark, QColor(0x16, 0x17, 0x19));
  palette.setColor(QPalette::Shadow, Qt::black);
  palette.setColor(QPalette::Highlight, highlight);
  palette.setColor(QPalette::HighlightedText, Qt::white);
  palette.setColor(QPalette::Link, QColor(0x6f, 0xa8, 0xff));
  palette.setColor(QPalette::LinkVisited, QColor(0xb0, 0x8c, 0xff));
  for (QPalette::ColorRole role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
    palette.setColor(QPalette::Disabled, role, disabledText);
  palette.setColor(QPalette::Disabled, QPalette::Highlight, QColor(0x4a, 0x4d, 0x52));
  return palette;
}

void ApplyTheme(Theme theme) {
  if (theme == CurrentTheme() && qApp->property(kThemeProperty).isValid()) return;
  RememberDesktopLook();
  if (theme == Theme::Dark) {
    QApplication::setStyle(QStyleFactory::create("Fusion"));
    QApplication::setPalette(DarkPalette());
  } else {
    QApplication::setStyle(QStyleFactory::create(qApp->property(kDesktopStyleProperty).toString()));
    // A palette with no role set hands the colours back to the platform, which keeps following
    // the desktop's light or dark look; a copy of the old palette would pin it.
    QApplication::setPalette(QPalette());
  }
  qApp->setProperty(kThemeProperty, static_cast<int>(theme));
}

Theme CurrentTheme() {
  return qApp->property(kThemeProperty).toInt() == static_cast<int>(Theme::Dark) ? Theme::Dark
                                                                                 : Theme::Desktop;
}

QAction* MakeThemeAction(const std::filesystem::path& configFolder, QObject* parent) {
  auto* action = new QAction(kDarkThemeCaption, parent);
  action->setCheckable(true);
  action->setChecked(CurrentTheme() == Theme::Dark);
  QObject::connect(action, &QAction::toggled, action, [configFolder](bool dark) {
    const Theme theme = dark ? Theme::Dark : Theme::Desktop;
    ApplyTheme(theme);
    (void)WriteTheme(configFolder, theme);  // a folder that refuses it costs the next run's look
  });
  return action;
}

}  // namespace talvex::app
