// An open information window, as scenarios look at it.
#ifndef QELM_TESTS_SHOWN_WINDOW_H
#define QELM_TESTS_SHOWN_WINDOW_H

#include <windows.h>

#include <gtest/gtest.h>

#include <vector>

#include "infowindow/desktop.h"

namespace qelm::test {

inline void expectRectangle(const RECT& r, int left, int top, int width, int height) {
  EXPECT_EQ(r.left, left);
  EXPECT_EQ(r.top, top);
  EXPECT_EQ(r.right - r.left, width);
  EXPECT_EQ(r.bottom - r.top, height);
}

/// With its own window procedure; the pointer is nowhere near.
class WindowShown : public testing::Test {
 protected:
  void SetUp() override {
    registerFullClass(Procedure::ownOne);
    SetCursorPos(5, 5);
    window_ = openWindow();
    ASSERT_NE(window_, nullptr);
    children_ = childrenOf(window_);
    ASSERT_EQ(children_.size(), 4U);
  }

  HWND closeBox() const { return children_[0]; }
  HWND creditRow() const { return children_[1]; }
  HWND documentationRow() const { return children_[2]; }

  HWND window_ = nullptr;
  std::vector<HWND> children_;
};

}  // namespace qelm::test

#endif
