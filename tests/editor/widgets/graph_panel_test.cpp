// The graph panel driven by a scripted mouse and keyboard, offscreen: handles dragged and
// wheeled, the cursor, zoom and pan, and the export's files, compared with talvexctl's plot.
#include "editor/widgets/graph_panel.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QCheckBox>
#include <QFile>
#include <QImage>
#include <QMouseEvent>
#include <QPushButton>
#include <QSvgRenderer>
#include <QTemporaryDir>
#include <QTest>
#include <QToolTip>
#include <QWheelEvent>
#include <sstream>

#include "app/recording_dialogs.h"
#include "cli/cli.h"
#include "editor/model/recording_link.h"
#include "editor/widgets/response_graph.h"
#include "graph/frequency_grid.h"
#include "presets/preset_file.h"

namespace talvex::editor {
namespace {

constexpr int kOut3 = 4;

class GraphPanelTest : public ::testing::Test {
 protected:
  GraphPanelTest() { Open(params::DeviceParams::FromDefault(1)); }

  void Open(const params::DeviceParams& device) {
    panel_.reset();
    device_ = device;
    model_ = std::make_unique<DeviceEditor>(4, device_, params::DecimalMark::Point, link_);
    model_->Load();
    model_->OnChanged([this](auto) { panel_->Refresh(); });
    panel_ = std::make_unique<GraphPanel>(*model_, dialogs_,
                                          [this] { return std::filesystem::path(Folder()); });
    panel_->Refresh();
    panel_->show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(panel_.get()));
  }

  std::string Folder() const { return folder_.path().toStdString(); }
  ResponseGraph& Graph() { return panel_->Graph(); }

  // Where a frequency and a dB value fall in the graph widget.
  QPointF At(double hz, double db) {
    const graph::PlotMapping mapping = Graph().Mapping();
    return QPointF(Graph().PlotRect().topLeft()) + QPointF(mapping.XOf(hz), mapping.MagnitudeY(db));
  }

  void Mouse(QEvent::Type type, QPointF at, Qt::KeyboardModifiers keys = {}) {
    const Qt::MouseButton button = type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton;
    const Qt::MouseButtons held =
        type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::MouseButtons(Qt::LeftButton);
    QMouseEvent event(type, at, Graph().mapToGlobal(at), button, held, keys);
    QApplication::sendEvent(&Graph(), &event);
  }

  void Wheel(QPointF at, int eighths, Qt::KeyboardModifiers keys = {}) {
    QWheelEvent event(at, Graph().mapToGlobal(at), {}, QPoint(0, eighths), Qt::NoButton, keys,
                      Qt::NoScrollPhase, false);
    QApplication::sendEvent(&Graph(), &event);
  }

  std::string Shown(ParamKind kind, int band) {
    return model_->Show({kind, params::ChannelOfBand(band), band}).text;
  }

  QTemporaryDir folder_;
  params::DeviceParams device_;
  RecordingLink link_;
  testing::RecordingDialogs dialogs_;
  std::unique_ptr<DeviceEditor> model_;
  std::unique_ptr<GraphPanel> panel_;
};

// A band's handle dragged with the mouse: each move snapped and sent as one band command, Shift
// keeping the frequency; the handle is drawn where the band now is, the curve through it.
TEST_F(GraphPanelTest, shouldSendTheSnappedBandOfEachMoveOfADraggedHandle) {
  model_->SelectChannel(kOut3);
  panel_->Refresh();
  const int band = params::GlobalBand(kOut3, 0);  // where the seven flat bands meet, EQ 1 is taken
  ASSERT_EQ(Graph().HandleAt(At(1000, 0)), 0);
  const struct {
    double hz, db;
    Qt::KeyboardModifiers keys;
    const char* frequency;
    const char* gain;
    std::size_t frames;
  } moves[] = {{1500, 3.1, {}, "1510", "3", 1},
               {2000, 6.2, {}, "2000", "6", 2},
               {2010, 6.1, {}, "2000", "6", 2},
               {4000, 6.0, Qt::ShiftModifier, "1000", "6", 3},
               {2000, 9.0, Qt::ControlModifier, "2000", "0", 4},
               {2000, 6.0, {}, "2000", "6", 5}};
  Mouse(QEvent::MouseButtonPress, At(1000, 0) + QPointF(1, -1));  // a pixel off the centre
  for (const auto& move : moves) {
    Mouse(QEvent::MouseMove, At(move.hz, move.db) + QPointF(1, -1), move.keys);
    EXPECT_EQ(Shown(ParamKind::EqFrequency, band), move.frequency) << move.hz;
    EXPECT_EQ(Shown(ParamKind::EqGain, band), move.gain) << move.hz;
    EXPECT_EQ(link_.frames.size(), move.frames) << move.hz;
  }
  Mouse(QEvent::MouseButtonRelease, At(2000, 6) + QPointF(1, -1));
  EXPECT_EQ(link_.frames.back(), "F0 81 04 05 04 00 00 00 00 A0 09 2A F7");
  EXPECT_EQ(model_->Gesture(), 0);

  const QImage image = Graph().grab().toImage();
  const QPoint centre = At(2000, 6).toPoint();
  EXPECT_EQ(image.pixel(centre), kChannelColours[kOut3]);  // the handle, filled: no longer flat
  EXPECT_NEAR(model_->Magnitude(kOut3)[graph::NearestGridPoint(2000)], 6.0f, 0.05f);
  Mouse(QEvent::MouseMove, At(2000, 6));
  EXPECT_EQ(QToolTip::text().toStdString(), "Out 3 EQ 1: 2000 Hz, Q 0.30, 6 dB");
}

TEST_F(GraphPanelTest, shouldStepTheQWithTheWheelOverAHandleAndZoomElsewhere) {
  const QPointF handle = At(1000, 0);
  Wheel(handle, 120);
  EXPECT_EQ(Shown(ParamKind::EqQ, 0), "0.35");
  Wheel(handle, 60);  // half a notch waits for the other half
  EXPECT_EQ(Shown(ParamKind::EqQ, 0), "0.35");
  Wheel(handle, -300);
  EXPECT_EQ(Shown(ParamKind::EqQ, 0), "0.25");
  EXPECT_TRUE(Graph().Range().IsWhole());

  const QPointF background = At(200, -20);
  const double hzUnder = Graph().Mapping().FrequencyAt(background.x() - Graph().PlotRect().left());
  Wheel(background, 240);  // two notches: 1.25 x 1.25 on both axes, about the pointer
  EXPECT_NEAR(Graph().Range().width, 0.64, 1e-9);
  EXPECT_NEAR(Graph().Range().height, 0.64, 1e-9);
  EXPECT_NEAR(Graph().Mapping().FrequencyAt(background.x() - Graph().PlotRect().left()), hzUnder,
              1e-6 * hzUnder);
  Wheel(background, 120, Qt::ControlModifier);  // the decibels alone
  EXPECT_NEAR(Graph().Range().width, 0.64, 1e-9);
  EXPECT_NEAR(Graph().Range().height, 0.512, 1e-9);
  const double left = Graph().Range().left;
  Mouse(QEvent::MouseButtonPress, background);  // a drag on the background pans
  Mouse(QEvent::MouseMove, background + QPointF(-50, 0));
  Mouse(QEvent::MouseButtonRelease, background + QPointF(-50, 0));
  EXPECT_NEAR(Graph().Range().left, left + 50.0 / Graph().PlotRect().width() * 0.64, 1e-9);
  EXPECT_EQ(Shown(ParamKind::EqQ, 0), "0.25");  // nothing edited
  QTest::keyClick(&Graph(), Qt::Key_Home);
  EXPECT_TRUE(Graph().Range().IsWhole());
  QTest::keyClick(&Graph(), Qt::Key_Plus);
  EXPECT_FALSE(Graph().Range().IsWhole());
  QTest::mouseClick(&panel_->ResetButton(), Qt::LeftButton);
  EXPECT_TRUE(Graph().Range().IsWhole());
}

// "Show cursor": the reading at the cursor is each shown curve's table value at the grid point
// nearest it, level included, and the sum's.
TEST_F(GraphPanelTest, shouldReadTheTablesUnderTheCursor) {
  model_->Commit({ParamKind::Level, kOut3, 0}, "-2.5");
  model_->Commit({ParamKind::EqGain, kOut3, params::GlobalBand(kOut3, 1)}, "-5");
  panel_->SumBox(0).click();
  panel_->SumBox(2).click();
  panel_->ShowCursorBox().click();
  ASSERT_TRUE(Graph().CursorShown());
  const int point = graph::GridIndexOfHz(1009).value();
  const double x = Graph().Mapping().XOf(1009.4);
  Mouse(QEvent::MouseMove, QPointF(Graph().PlotRect().left() + x, Graph().PlotRect().center().y()));
  const graph::CursorReading reading = Graph().ReadingAt(x);
  EXPECT_EQ(reading.hz, 1009);
  ASSERT_TRUE(reading.channels[kOut3].has_value());
  EXPECT_EQ(reading.channels[kOut3]->magnitudeDb,
            model_->Tables().ChannelMagnitude(kOut3)[point] - 2.5f);
  EXPECT_EQ(reading.channels[kOut3]->phaseDeg, model_->Tables().ChannelPhase(kOut3)[point]);
  EXPECT_FALSE(reading.channels[1].has_value());  // In B is not shown
  ASSERT_TRUE(reading.sum.has_value());
  EXPECT_EQ(reading.sum->magnitudeDb, model_->Sum()->magnitude[point]);
  // The cursor line is drawn where the mouse is.
  const QImage image = Graph().grab().toImage();
  const int column = Graph().PlotRect().left() + static_cast<int>(x);
  int dark = 0;
  for (int y = Graph().PlotRect().top(); y <= Graph().PlotRect().bottom(); ++y)
    dark += qGray(image.pixel(column, y)) < 64;
  EXPECT_GT(dark, Graph().PlotRect().height() / 4);
}

// The export writes what the graph shows: a PNG that decodes, an SVG that parses, a CSV of the
// grid's points; talvexctl's plot of the same preset and view writes the same picture.
TEST_F(GraphPanelTest, shouldExportTheGraphAsTalvexctlPlotsIt) {
  const std::string preset = Folder() + "/side.tvx";
  const auto run = [&](std::vector<std::string> args) {
    std::ostringstream out, err;
    args.insert(args.begin(), {"--file", preset});
    return cli::RunCli(args, out, err) == cli::kExitOk ? std::string() : err.str();
  };
  ASSERT_EQ(run({"new"}), "");
  for (const auto& [name, value] :
       std::vector<std::pair<std::string, std::string>>{{"out1.lp.freq", "2500"},
                                                        {"out1.lp.type", "7"},
                                                        {"out3.hp.freq", "2500"},
                                                        {"out3.hp.type", "7"},
                                                        {"out3.delay", "0.1"},
                                                        {"inA.eq2.gain", "4"}})
    ASSERT_EQ(run({"set", name, value}), "") << name;
  params::ParamImage record{};
  ASSERT_EQ(presets::ReadPresetFile(preset, record), "");
  Open(params::DeviceParams::FromImage(record));
  panel_->SumBox(0).click();
  panel_->SumBox(2).click();

  const auto exported = [&](const std::string& name) {
    dialogs_.file = Folder() + "/" + name;
    EXPECT_TRUE(panel_->Export()) << name;
    QFile file(QString::fromStdString(Folder() + "/" + name));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << name;
    return file.readAll();
  };
  const QByteArray png = exported("editor.png");
  QImage picture;
  ASSERT_TRUE(picture.loadFromData(png, "PNG"));
  EXPECT_EQ(picture.size(), Graph().sizeHint());
  QSvgRenderer svg(exported("editor.svg"));
  ASSERT_TRUE(svg.isValid());
  EXPECT_EQ(svg.viewBox().size(), Graph().sizeHint());
  const QList<QByteArray> rows = exported("editor.csv").split('\n');
  ASSERT_EQ(rows.size(), graph::kGridPointCount + 2);  // the header, the points, the last end
  EXPECT_TRUE(rows[0].startsWith("hz,In A magnitude_db,In A phase_deg,Out 1 magnitude_db"));
  EXPECT_TRUE(rows[0].endsWith(",Sum magnitude_db,Sum phase_deg"));
  EXPECT_TRUE(rows[1].startsWith("10,"));
  EXPECT_TRUE(rows[graph::kGridPointCount].startsWith("20000,"));
  dialogs_.file = Folder() + "/named";  // no extension: a PNG picture, "named.png"
  EXPECT_TRUE(panel_->Export());
  QFile named(QString::fromStdString(Folder() + "/named.png"));
  ASSERT_TRUE(named.open(QIODevice::ReadOnly));
  EXPECT_EQ(named.readAll(), png);
  dialogs_.file = Folder() + "/graph.jpg";
  EXPECT_FALSE(panel_->Export());
  ASSERT_EQ(dialogs_.shown.size(), 1u);
  EXPECT_EQ(dialogs_.shown[0].title, kExportTitle);
  EXPECT_EQ(dialogs_.shown[0].text, "the file name graph.jpg does not end in .png, .svg or .csv");
  EXPECT_EQ(dialogs_.fileDialogs.back().second, kExportFilter);

  for (const char* name : {"plot.png", "plot.svg", "plot.csv"})
    ASSERT_EQ(run({"plot", "--sum", "out1,out3", Folder() + "/" + name}), "") << name;
  const auto read = [&](const char* name) {
    QFile file(QString::fromStdString(Folder() + "/" + name));
    file.open(QIODevice::ReadOnly);
    return file.readAll();
  };
  EXPECT_EQ(read("plot.png"), png);
  EXPECT_EQ(read("plot.svg"), read("editor.svg"));
  EXPECT_EQ(read("plot.csv"), read("editor.csv"));
}

}  // namespace
}  // namespace talvex::editor
