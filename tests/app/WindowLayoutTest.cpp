// The main window's layout (pictures at whole multiples of their size, no
// control smaller than its text) and its placement kept in the configuration.

#include "AppTestSupport.h"

#include "carset/TeamList.h"
#include "graphics/PictureWidgets.h"
#include "shell/FieldWidgets.h"

#include <QApplication>
#include <QCloseEvent>
#include <QComboBox>
#include <QLayout>
#include <QPushButton>
#include <QScreen>
#include <QStyle>

namespace tarvel::test {
namespace {

// Every pixel of the picture is a square of scale x scale pixels on the screen, unsmoothed.
void expectPixelForPixel(PixelView& view, const QImage& picture, const std::string& when) {
    const QImage screen = view.grab().toImage().copy(view.pictureRect());
    ASSERT_EQ(screen.size(), picture.size() * view.scale()) << when;
    for (int y = 0; y < screen.height(); y += 7)
        for (int x = 0; x < screen.width(); ++x)
            ASSERT_EQ(screen.pixel(x, y), picture.pixel(x / view.scale(), y / view.scale())) << when;
}

// Texts need their preferred size; line edits and combo boxes scroll or elide, so their minimum.
void expectNothingClipped(QWidget& panel, const std::string& when) {
    for (QWidget* child : panel.findChildren<QWidget*>()) {
        if (child->parentWidget() != &panel) continue;
        const bool scrolls = qobject_cast<QLineEdit*>(child) || qobject_cast<QComboBox*>(child);
        const QSize needed = scrolls ? child->minimumSizeHint() : child->sizeHint();
        EXPECT_TRUE(child->width() >= needed.width() && child->height() >= needed.height())
            << when << " " << child->metaObject()->className();
    }
    for (ValueSpinBox* figure : panel.findChildren<ValueSpinBox*>())   // every digit of the largest value
        EXPECT_GE(figure->findChild<QLineEdit*>()->width(),
                  figure->fontMetrics().horizontalAdvance(QString::number(figure->maximum()))) << when;
}

TEST_F(AppTest, PicturesGrowByWholeMultiplesAndNothingIsClipped) {
    configureGame();
    session.config.highGrip = true;   // five-digit grips
    window().startUp({});
    const QSize start = window().size();
    const struct {
        QSize size;   // empty: the smallest the window allows
        int font;
        int livery, helmet;   // at least
    } cases[] = {
        {start, 11, 1, 2},        {start + QSize(300, 200), 11, 2, 2}, {{1600, 1000}, 11, 4, 3},
        {{2600, 1500}, 11, 6, 6}, {{3400, 800}, 11, 3, 6},             {{900, 1600}, 11, 2, 2},
        {{}, 18, 1, 2},           {{}, 24, 1, 2},                      {start, 11, 1, 2},
    };
    for (const auto& c : cases) {
        QFont font = panel().font();
        font.setPixelSize(c.font);
        panel().setFont(font);
        QApplication::processEvents();
        window().resize(c.size.isEmpty() ? window().minimumSize() : c.size);
        window().layout()->activate();
        const std::string when = std::to_string(window().width()) + "x" + std::to_string(window().height());
        LiveryView& livery = *panel().liveryView();
        HelmetView& helmet = *panel().helmetView(1);
        EXPECT_GE(livery.scale(), c.livery) << when;
        EXPECT_GE(helmet.scale(), c.helmet) << when;
        // A larger multiple is too wide for the column or too high for the gap under the livery's buttons.
        const int spare = panel().performanceValue(0)->y() - panel().undoButton()->geometry().bottom();
        EXPECT_TRUE(livery.width() < kLiveryWidth * (livery.scale() + 1) || spare < kLiveryHeight + 20) << when;
        expectPixelForPixel(livery, livery.shown(), when);
        expectPixelForPixel(helmet, helmet.helmet(), when);
        expectNothingClipped(panel(), when);
    }
    EXPECT_EQ(panel().liveryView()->scale(), 1);   // and back again
    EXPECT_EQ(panel().helmetView(0)->scale(), 2);
}

TEST_F(AppTest, PlacementIsRestoredOnTheScreenAndKeptByAnAcceptedClose) {
    configureGame();
    const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
    const int bar = QApplication::style()->pixelMetric(QStyle::PM_TitleBarHeight);   // room kept for the title bar
    const struct {
        WindowPlacement saved;
        QRect shown;
        int team;
    } cases[] = {
        {{screen.x() + 20, screen.y() + 60, 700, 520, false, 5}, {screen.x() + 20, screen.y() + 60, 700, 520}, 5},
        {{screen.right() + 500, screen.bottom() + 90, 700, 5000, false, 40},
         {screen.right() + 1 - 700, screen.y() + bar, 700, screen.height() - bar}, 13},
        {{screen.x(), screen.y() + 90, 700, 520, false, -3}, {screen.x(), screen.y() + 90, 700, 520}, 0},
    };
    for (const auto& c : cases) {
        ASSERT_TRUE(session.writeWindowPlacement(c.saved));
        MainWindow w(session, asker);
        w.startUp({});
        EXPECT_EQ(w.geometry(), c.shown) << c.saved.x;
        EXPECT_EQ(w.panel().teamList()->currentRow(), c.team) << c.saved.x;
    }

    // Maximised it opens maximised; a cancelled close keeps nothing, an accepted
    // one the rectangle the window returns to and the team on show.
    const WindowPlacement saved{screen.x() + 30, screen.y() + 40, 660, 510, true, 2};
    ASSERT_TRUE(session.writeWindowPlacement(saved));
    window().startUp({});
    EXPECT_TRUE(window().isMaximized());
    window().document().setCurrentTeam(9);
    change([](CarSet& s) { s.team(0).powerRace = 1; });
    for (Answer answer : {Answer::Cancel, Answer::No}) {
        asker.answers.push_back(answer);
        QCloseEvent close;
        QApplication::sendEvent(&window(), &close);
        EXPECT_EQ(session.readWindowPlacement()->team, answer == Answer::Cancel ? 2 : 9);
    }
    EXPECT_EQ(session.readWindowPlacement(), (WindowPlacement{saved.x, saved.y, 660, 510, true, 9}));
}

}  // namespace
}  // namespace tarvel::test
