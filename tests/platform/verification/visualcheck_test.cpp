#include <gtest/gtest.h>

#include <QPainter>

#include "platform/verification/check.h"
#include "support/printqt.h"

namespace Tamrix {
namespace {

/// Fills each element with a colour of its type and text.
void paint(const VisualElement& element, QPainter& painter) {
    const uint colour = qHash(element.type + element.text, 1U);
    painter.fillRect(element.place, QColor::fromRgb(colour | 0xff000000U));
    for (const VisualElement& child : element.children)
        paint(child, painter);
}

VisualPoint pointOf(const VisualElement& root) {
    VisualPoint point;
    point.name = ":Dialog";
    point.root = root;
    point.picture = QImage(root.place.size(), QImage::Format_RGB32);
    QPainter painter(&point.picture);
    paint(root, painter);
    return point;
}

class VisualCheckTest : public testing::Test {
protected:
    /// What compare() finds between `before` and `after`.
    QStringList differences() { return compareVisuals(expected, pointOf(after)).differences(); }

    static VisualElement dialog() {
        return {"Dialog",
                "",
                "Title",
                {0, 0, 100, 60},
                {{"Label", "", "Name", {5, 5, 40, 10}, {}},
                 {"Label", "", "Place", {5, 20, 40, 10}, {}},
                 {"Group",
                  "box",
                  "",
                  {50, 5, 45, 40},
                  {{"Button", "ok", "OK", {55, 10, 20, 10}, {}},
                   {"Button", "no", "No", {55, 25, 20, 10}, {}}}}}};
    }
    VisualElement& label(int index) { return after.children[index]; }
    VisualElement& group() { return after.children[2]; }

    VisualPoint expected = pointOf(dialog());
    VisualElement after = dialog();
};

TEST_F(VisualCheckTest, FindsNothingInTheSame) {
    const Findings findings = compareVisuals(expected, pointOf(after));
    EXPECT_EQ(findings.differences(), QStringList());
    EXPECT_EQ(findings.compared, 6);
    EXPECT_TRUE(findings.pictures.difference.isNull());
}

TEST_F(VisualCheckTest, NamesTheElementsThatDiffer) {
    label(0).text = "Nome";
    EXPECT_EQ(differences(), QStringList{"Label \"Name\" has the text \"Nome\""});

    // What is in between shifts nobody.
    after = dialog();
    after.children.insert(after.children.begin(), {"Label", "", "New", {5, 45, 40, 10}, {}});
    EXPECT_EQ(differences(),
              QStringList{"Label \"New\" at 5,45 with 40x10 pixels is not expected"});

    // With a group goes all that is in it.
    after = dialog();
    after.children.pop_back();
    EXPECT_EQ(differences(),
              QStringList{"Group 'box' is missing, expected at 50,5 with 45x40 pixels"});

    // A group that moves takes its buttons along, and the pixels that it leaves are not compared.
    after = dialog();
    group().place.translate(0, 8);
    for (VisualElement& button : group().children)
        button.place.translate(0, 8);
    EXPECT_EQ(differences(), QStringList{"Group 'box' is at 50,13 with 45x40 pixels in its parent, "
                                         "expected at 50,5 with 45x40 pixels"});
    expected.rules.placeTolerance = 8;
    EXPECT_EQ(differences(), QStringList());
    expected.rules.placeTolerance = 0;
    expected.rules.comparePlaces = false;
    EXPECT_EQ(differences(), QStringList());
    expected.rules.comparePlaces = true;

    after = dialog();
    after.place.setWidth(98);
    EXPECT_EQ(differences(), QStringList{"Dialog \"Title\" has 98x60 pixels, expected 100x60"});
}

TEST_F(VisualCheckTest, TellsWhosePixelsDiffer) {
    VisualPoint observed = pointOf(after);
    // Four pixels of the button, one of the label, by little.
    const QRgb before = observed.picture.pixel(6, 6);
    for (int x = 56; x < 60; ++x)
        observed.picture.setPixel(x, 11, qRgb(1, 2, 3));
    observed.picture.setPixel(6, 6, qRgb(qRed(before) ^ 4, qGreen(before), qBlue(before)));
    Findings findings = compareVisuals(expected, observed);
    EXPECT_EQ(findings.differences(),
              QStringList{"Button 'ok' \"OK\" looks different in 4 of 200 pixels, which are 2 %"});
    EXPECT_EQ(findings.pictures.difference.pixel(57, 11), qRgb(255, 0, 0));
    EXPECT_EQ(findings.pictures.difference.pixel(55, 10), qRgb(255, 0, 0)) << "a frame";
    EXPECT_NE(findings.pictures.difference.pixel(6, 6), qRgb(255, 0, 0));

    expected.rules.pixelTolerance = 2;
    EXPECT_TRUE(compareVisuals(expected, observed).isAsExpected());
    expected.rules.colorTolerance = 3;
    EXPECT_EQ(compareVisuals(expected, observed).differences(), QStringList());
    expected.rules.pixelTolerance = 0;
    EXPECT_EQ(compareVisuals(expected, observed).differences().size(), 2);
    expected.rules.comparePictures = false;
    EXPECT_TRUE(compareVisuals(expected, observed).isAsExpected());
}

TEST_F(VisualCheckTest, ComparesPicturesOfOtherDensitiesAtTheirOwn) {
    const auto enlarge = [](VisualPoint& point) {
        point.picture = point.picture.scaled(point.picture.size() * 2);
        point.picture.setDevicePixelRatio(2);
    };
    VisualPoint observed = pointOf(after);
    enlarge(expected);
    enlarge(observed);
    EXPECT_TRUE(compareVisuals(expected, observed).isAsExpected());
    observed.picture.setPixel(112, 22, qRgb(1, 2, 3));
    EXPECT_EQ(
        compareVisuals(expected, observed).differences(),
        QStringList{"Button 'ok' \"OK\" looks different in 1 of 800 pixels, which are 0.125 %"});
}

TEST_F(VisualCheckTest, RenewsWhatIsThere) {
    label(0).text = "Nome";
    const VisualPoint observed = pointOf(after);
    expected.pictureFile = "dialog.png";
    expected.rules.placeTolerance = 3;
    const Findings findings = compareVisuals(expected, observed);
    const auto& renewed = std::get<VisualPoint>(findings.renewed);
    EXPECT_EQ(renewed.name, ":Dialog");
    EXPECT_EQ(renewed.pictureFile, "dialog.png");
    EXPECT_EQ(renewed.rules.placeTolerance, 3);
    EXPECT_TRUE(compareVisuals(renewed, observed).isAsExpected());
}

TEST_F(VisualCheckTest, NeedsPicturesToCompareThem) {
    VisualPoint observed = pointOf(after);
    observed.picture = QImage();
    const Findings findings = compareVisuals(expected, observed);
    EXPECT_EQ(findings.lasting, QStringList{"There is no picture of the object"});
    EXPECT_FALSE(std::get<VisualPoint>(findings.renewed).picture.isNull());
}

// Places come from files and applications.
TEST_F(VisualCheckTest, TakesPlacesThatAreNotInThePicture) {
    after.children.push_back({"Far", "", "", {-1000, 500000000, 20, 20}, {}});
    expected = pointOf(after);
    after.children.back().place = {0, 0, 500000000, 500000000};
    EXPECT_EQ(differences().size(), 1);
}

}  // namespace
}  // namespace Tamrix
