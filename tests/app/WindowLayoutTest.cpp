// The main window's layout: pictures at whole multiples of their size, no
// control narrower than its text, and the placement kept in the configuration.

#include "AppTestSupport.h"

#include "carset/TeamList.h"
#include "graphics/PictureWidgets.h"
#include "shell/FieldWidgets.h"

#include "common/IniFile.h"

#include <QAbstractButton>
#include <QApplication>
#include <QCloseEvent>
#include <QComboBox>
#include <QGuiApplication>
#include <QLabel>
#include <QLayout>
#include <QPushButton>
#include <QScreen>
#include <QStyle>

namespace tarvel::test {
namespace {

class WindowLayoutTest : public AppTest {
protected:
    void SetUp() override { configureGame(); }
    void resizeTo(QSize size) {
        window().resize(size);
        window().layout()->activate();
    }
};

// Every pixel of the picture is a square of scale x scale pixels on the screen.
void expectDrawnPixelForPixel(PixelView& view, const QImage& picture, const char* what) {
    const QImage screen = view.grab().toImage();
    const int k = view.scale();
    const QPoint origin = view.pictureRect().topLeft();
    for (int y : {0, picture.height() / 2, picture.height() - 1})
        for (int x = 0; x < picture.width(); ++x)
            for (int dy = 0; dy < k; ++dy)
                for (int dx = 0; dx < k; ++dx)
                    ASSERT_EQ(screen.pixel(origin + QPoint(x * k + dx, y * k + dy)), picture.pixel(x, y))
                        << what << " at " << x << "," << y << " scale " << k;
}

// A control shows its whole text when it is at least as large as its preferred
// size; a line edit and a list box scroll their text, so they need only their minimum.
void expectNothingClipped(QWidget& panel, const std::string& when) {
    for (QWidget* child : panel.findChildren<QWidget*>()) {
        if (!child->isVisible() || child->parentWidget() != &panel) continue;
        const bool scrolls = qobject_cast<QLineEdit*>(child) || qobject_cast<QComboBox*>(child);
        const QSize needed = scrolls ? child->minimumSizeHint() : child->sizeHint();
        EXPECT_GE(child->width(), needed.width()) << when << ": " << child->metaObject()->className();
        EXPECT_GE(child->height(), needed.height()) << when << ": " << child->metaObject()->className();
        if (auto* label = qobject_cast<QLabel*>(child)) {
            EXPECT_GE(child->width(), label->fontMetrics().horizontalAdvance(label->text())) << when;
        }
        if (auto* button = qobject_cast<QAbstractButton*>(child)) {
            EXPECT_GE(child->width(), button->fontMetrics().horizontalAdvance(button->text())) << when;
        }
    }
    // The figures beside the scroll bars show every digit of their largest value.
    for (ValueSpinBox* figure : panel.findChildren<ValueSpinBox*>()) {
        const QString widest = QString::number(figure->maximum());
        EXPECT_GE(figure->findChild<QLineEdit*>()->width(), figure->fontMetrics().horizontalAdvance(widest)) << when;
    }
}

TEST_F(WindowLayoutTest, PicturesGrowByWholeMultiplesAsTheWindowGrows) {
    window().startUp({});
    const QSize start = window().size();
    struct Case {
        QSize size;
        int liveryAtLeast;
        int helmetAtLeast;
    };
    const Case cases[] = {
        {start, 1, 2},
        {start + QSize(300, 200), 2, 2},
        {QSize(1600, 1000), 4, 3},
        {QSize(2600, 1500), 6, 6},
        {QSize(3400, 800), 3, 6},    // wide and low: the livery's height decides
        {QSize(900, 1600), 2, 2},    // narrow and tall: the width decides
        {start, 1, 2},
    };
    for (const Case& c : cases) {
        resizeTo(c.size);
        const std::string when = std::to_string(c.size.width()) + "x" + std::to_string(c.size.height());
        LiveryView& livery = *panel().liveryView();
        HelmetView& helmet = *panel().helmetView(1);
        EXPECT_GE(livery.scale(), c.liveryAtLeast) << when;
        EXPECT_GE(helmet.scale(), c.helmetAtLeast) << when;
        for (PixelView* view : {static_cast<PixelView*>(&livery), static_cast<PixelView*>(&helmet)}) {
            EXPECT_EQ(view->pictureRect().size(), view->pictureSize() * view->scale()) << when;
            EXPECT_TRUE(view->rect().contains(view->pictureRect())) << when;
        }
        // A larger multiple would be too wide for the column or too high for
        // the gap left between the livery's buttons and the performance.
        const int spare = panel().performanceValue(0)->y() - panel().undoButton()->geometry().bottom();
        EXPECT_TRUE(livery.width() < kLiveryWidth * (livery.scale() + 1) || spare < kLiveryHeight + 20) << when;
        EXPECT_EQ(livery.height(), kLiveryHeight * livery.scale()) << when;
        expectDrawnPixelForPixel(livery, livery.shown(), "livery");
        expectDrawnPixelForPixel(helmet, helmet.helmet(), "helmet");
        expectNothingClipped(panel(), when);
    }
    EXPECT_EQ(panel().liveryView()->scale(), 1);
    EXPECT_EQ(panel().helmetView(0)->scale(), 2);
}

// Larger fonts (and with them larger scale factors) make the window larger, never a control cut.
TEST_F(WindowLayoutTest, NoControlIsClippedAtAnyFontSize) {
    session.config.highGrip = true;   // five-digit grips
    window().startUp({});
    for (int pixels : {11, 14, 18, 24}) {
        QFont font = panel().font();
        font.setPixelSize(pixels);
        panel().setFont(font);
        window().layout()->activate();
        resizeTo(window().minimumSize());
        expectNothingClipped(panel(), std::to_string(pixels) + " px");
        EXPECT_EQ(panel().gripField(0, 0)->text().size(), 5);
    }
}

TEST_F(WindowLayoutTest, SavedPlacementIsAppliedOnTheScreenAndKeptOnClose) {
    const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
    // Room is kept for the title bar above the client area.
    const int bar = window().style()->pixelMetric(QStyle::PM_TitleBarHeight, nullptr, &window());
    struct Case {
        const char* what;
        WindowPlacement saved;
        QRect shown;
        int team;
    };
    const Case cases[] = {
        {"inside the screen", {screen.x() + 20, screen.y() + 60, 700, 520, false, 5},
         QRect(screen.x() + 20, screen.y() + 60, 700, 520), 5},
        {"off to the right and below", {screen.right() + 500, screen.bottom() + 90, 700, 520, false, 40},
         QRect(screen.right() + 1 - 700, screen.bottom() + 1 - 520, 700, 520), 13},
        {"higher than the screen", {screen.x() + 50, screen.y() + 10, 700, 5000, false, -3},
         QRect(screen.x() + 50, screen.y() + bar, 700, screen.height() - bar), 0},
    };
    for (const Case& c : cases) {
        ASSERT_TRUE(session.writeWindowPlacement(c.saved));
        MainWindow w(session, asker);
        w.startUp({});
        EXPECT_EQ(w.geometry(), c.shown) << c.what;
        EXPECT_EQ(w.document().currentTeam(), c.team) << c.what;
        EXPECT_EQ(w.panel().teamList()->currentRow(), c.team) << c.what;
    }

    // Maximised it opens maximised, and closing keeps the rectangle it goes back to.
    ASSERT_TRUE(session.writeWindowPlacement({screen.x() + 30, screen.y() + 40, 660, 510, true, 2}));
    MainWindow w(session, asker);
    w.startUp({});
    EXPECT_TRUE(w.isMaximized());
    w.document().setCurrentTeam(9);
    QCloseEvent close;
    QApplication::sendEvent(&w, &close);
    ASSERT_TRUE(close.isAccepted());
    EXPECT_EQ(session.readWindowPlacement(), (WindowPlacement{screen.x() + 30, screen.y() + 40, 660, 510, true, 9}));
}

// Only a close that goes ahead keeps the placement.
TEST_F(WindowLayoutTest, ACancelledCloseKeepsNothing) {
    window().startUp({});
    change([](CarSet& s) { s.team(0).powerRace = 1; });
    asker.answers.push_back(Answer::Cancel);
    QCloseEvent cancelled;
    QApplication::sendEvent(&window(), &cancelled);
    EXPECT_FALSE(cancelled.isAccepted());
    EXPECT_FALSE(session.readWindowPlacement());
    asker.answers.push_back(Answer::No);
    window().document().setCurrentTeam(6);
    QCloseEvent accepted;
    QApplication::sendEvent(&window(), &accepted);
    ASSERT_TRUE(accepted.isAccepted());
    const auto kept = session.readWindowPlacement();
    ASSERT_TRUE(kept);
    EXPECT_EQ(kept->team, 6);
    EXPECT_EQ(QSize(kept->width, kept->height), window().size());
}

}  // namespace
}  // namespace tarvel::test
