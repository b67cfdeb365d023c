// The information window's arithmetic and rules, on every platform.
#include "infowindow/layout.h"

#include <gtest/gtest.h>

#include <climits>
#include <string>

namespace qelm::infowindow {
namespace {

TEST(Position, IsCentredOnTheOwner) {
  EXPECT_EQ(positionOver({100, 200, 900, 800}), (Point{100, 253}));
  EXPECT_EQ(positionOver({-1920, 40, 0, 1080}), (Point{-1360, 313}));
}

TEST(Position, TruncatesHalves) {
  EXPECT_EQ(positionOver({0, 1, 801, 494}), (Point{0, 0}));
  EXPECT_EQ(positionOver({-3, -2, 0, -1}), (Point{-401, -248})) << "toward zero";
}

TEST(Position, OverAnOwnerWithItsTopAtRow0IsTheDefaultOnPurpose) {
  EXPECT_EQ(positionOver({100, 0, 900, 800}), (Point{300, 300}));
  EXPECT_EQ(kDefaultPosition, (Point{300, 300}));
}

TEST(Children, LieWhereTheyBelongInTheWindowsOwnSize) {
  const ChildLayout at = layOutChildren(kWindowWidth, kWindowHeight);
  EXPECT_EQ(at.closeBox, (Box{720, 35, 29, 29}));
  EXPECT_EQ(at.creditRow, (Box{200, 357, 400, 25}));
  EXPECT_EQ(at.documentationRow, (Box{250, 394, 300, 18}));
  EXPECT_EQ(at.examplesRow, (Box{250, 454, 300, 18}));
}

TEST(Children, UseTruncatedHalvesOfOddSizes) {
  const ChildLayout at = layOutChildren(801, 495);
  EXPECT_EQ(at.creditRow, (Box{200, 357, 400, 25}));
  EXPECT_EQ(at.documentationRow, (Box{250, 395, 300, 18}));
}

TEST(MulDiv, RoundsHalvesAwayFromZero) {
  EXPECT_EQ(mulDiv(26, 96, 72), 35);
  EXPECT_EQ(mulDiv(1, 1, 2), 1);
  EXPECT_EQ(mulDiv(-1, 1, 2), -1);
  EXPECT_EQ(mulDiv(1, -1, 2), -1);
  EXPECT_EQ(mulDiv(1, 1, -2), -1);
  EXPECT_EQ(mulDiv(1, 1, 3), 0);
  EXPECT_EQ(mulDiv(2, 1, 3), 1);
  EXPECT_EQ(mulDiv(INT_MAX, INT_MAX, INT_MAX), INT_MAX);
}

TEST(MulDiv, GivesMinusOneForWhatIsNoResult) {
  EXPECT_EQ(mulDiv(5, 7, 0), -1);
  EXPECT_EQ(mulDiv(INT_MAX, 2, 1), -1);
}

TEST(Text, LiesAroundTheMiddleAt96DotsAnInch) {
  const PaintLayout at = layOutText(800, 494, 96, 120);
  EXPECT_EQ(at.logo, (Point{340, 40}));
  EXPECT_EQ(at.textCentre, 400);
  EXPECT_EQ(at.titleFontHeight, -70);
  EXPECT_EQ(at.textFontHeight, -11);
  EXPECT_EQ(at.titleTop, 229 - 30);
  EXPECT_EQ(at.descriptionTop, 229 + 70);
  EXPECT_EQ(at.versionTop, 229 + 95);
  EXPECT_EQ(at.poweredByTop, 229 + 110);
}

TEST(Text, GrowsWithTheDotsAnInch) {
  const PaintLayout at = layOutText(800, 494, 144, 121);
  EXPECT_EQ(at.titleFontHeight, -104);
  EXPECT_EQ(at.textFontHeight, -17);
  EXPECT_EQ(at.logo, (Point{340, 40}));
  EXPECT_EQ(at.titleTop, 221 - 30);
}

TEST(Environment, CountsLengthsFrom1To255AsSet) {
  EXPECT_FALSE(countsAsSet(0));
  EXPECT_TRUE(countsAsSet(1));
  EXPECT_TRUE(countsAsSet(255));
  EXPECT_FALSE(countsAsSet(256)) << "the room that a value of 255 characters more would need";
  EXPECT_FALSE(countsAsSet(301));
}

TEST(Marker, HasNoSeparatorBetweenProductAndNameOnPurpose) {
  EXPECT_EQ(markerPath(L"C:\\Users\\me\\AppData\\Roaming"),
            L"C:\\Users\\me\\AppData\\Roaming\\VantleTermsAgreed.txt");
}

TEST(Marker, WithoutAFolderLiesAtTheRoot) {
  EXPECT_EQ(markerPath(L""), L"\\VantleTermsAgreed.txt");
}

TEST(Marker, TakesNoMoreOfTheFolderThanThereIsRoomFor) {
  const std::wstring path = markerPath(std::wstring(5000, L'x'));
  EXPECT_EQ(path, std::wstring(1998, L'x') + L"\\VantleTermsAgreed.txt");
}

TEST(Command, PutsTheTargetInQuotes) {
  EXPECT_EQ(openCommand(L"https://example.org/a b"), L"start \"\" \"https://example.org/a b\"");
}

TEST(Command, IsCutOffAtItsRoom) {
  const std::wstring command = openCommand(std::wstring(20000, L'x'));
  EXPECT_EQ(command.size(), 9999U);
  EXPECT_EQ(command.substr(0, 11), L"start \"\" \"x");
  EXPECT_EQ(command.back(), L'x');
}

}  // namespace
}  // namespace qelm::infowindow
