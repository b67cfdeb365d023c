// What of a mesh lies in front: a depth buffer over the picture.
#ifndef QELM_TOOLS_DEPTH_IMAGE_H
#define QELM_TOOLS_DEPTH_IMAGE_H

#include <span>
#include <vector>

#include "mesh/mesh.h"

namespace qelm::tool {

/// Points on the picture: x to the right and y down in pixels, z towards the viewer
/// in the same unit. Large pictures have a coarser image, which costs as little.
class DepthImage {
 public:
  /// Requires x in [0, width] and y in [0, height].
  DepthImage(std::span<const Point> vertices, const Mesh& mesh, double width, double height);

  /// False where the mesh hides a point that lies on it.
  bool shows(const Point& point) const;

 private:
  void draw(const Point& a, const Point& b, const Point& c);
  float& at(int x, int y) { return depth_[static_cast<std::size_t>(y * width_ + x)]; }

  double scale_;  ///< from the picture's pixels to those of the image
  int width_;
  int height_;
  std::vector<float> depth_;
};

}  // namespace qelm::tool

#endif
