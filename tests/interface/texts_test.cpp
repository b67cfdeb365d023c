// Version and status texts.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cstring>
#include <set>
#include <string>

#include "qelm.h"

namespace {

const int kStatuses[] = {-1,
                         QELM_STATUS_OK,
                         QELM_STATUS_BAD_COUNT_OR_HANDLE,
                         QELM_STATUS_NO_VERTEX_ORDER,
                         QELM_STATUS_REPEATED_VERTEX,
                         QELM_STATUS_UNUSED_VERTEX,
                         QELM_STATUS_NULL_ARRAY,
                         QELM_CHECK_INDEX_OUT_OF_RANGE,
                         QELM_CHECK_NOT_FINITE,
                         QELM_CHECK_NEAR_ZERO_AREA,
                         QELM_CHECK_SIZE_OUT_OF_RANGE,
                         QELM_CHECK_UNTAGGED_PART,
                         QELM_STATUS_ENDLESS_FLIPS,
                         QELM_STATUS_TOO_LARGE,
                         QELM_STATUS_NOT_FACTORISED,
                         QELM_STATUS_VALUE_NOT_FINITE,
                         QELM_STATUS_LOAD_NOT_FINITE,
                         QELM_STATUS_FIELD_NOT_FINITE};

TEST(Version, IsThatOfTheHeaderThatTheLibraryWasBuiltWith) {
  EXPECT_EQ(qelmversion(), std::to_string(QELM_VERSION_MAJOR) + "." +
                               std::to_string(QELM_VERSION_MINOR) + "." +
                               std::to_string(QELM_VERSION_PATCH));
}

TEST(StatusText, IsOneOfItsOwnForEveryStatus) {
  std::set<std::string> texts = {"unknown status code"};
  for (const int status : kStatuses) {
    EXPECT_TRUE(texts.insert(qelmstatustext(status)).second)
        << status << ": " << qelmstatustext(status);
  }
}

TEST(StatusText, IsOneLineOfAsciiWithoutAFullStop) {
  for (const int status : kStatuses) {
    const std::string text = qelmstatustext(status);
    ASSERT_GE(text.size(), 5U) << status;
    EXPECT_TRUE(std::all_of(text.begin(), text.end(), [](char c) { return c >= ' ' && c <= '~'; }))
        << text;
    EXPECT_NE(text.back(), '.') << text;
  }
}

TEST(StatusText, SaysSoOfANumberThatIsNoStatus) {
  const std::set<int> known(std::begin(kStatuses), std::end(kStatuses));
  for (const int number : {INT_MIN, -2, 3, 4, 22, 26, 100, 112, INT_MAX}) {
    ASSERT_EQ(known.count(number), 0U);
    EXPECT_STREQ(qelmstatustext(number), "unknown status code") << number;
  }
}

TEST(StatusText, IsTheSameAddressEveryTime) {
  EXPECT_EQ(qelmstatustext(23), qelmstatustext(23));
  EXPECT_EQ(qelmversion(), qelmversion());
}

}  // namespace
