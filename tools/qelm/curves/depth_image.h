// What of a mesh lies in front: a depth buffer over the picture.
//
// Every triangle is drawn into the image pixel by pixel; each pixel keeps the depth of the nearest
// triangle at its centre. A point of the mesh shows if it lies no deeper than the pixels around it.
// Takes time in proportion to the pixels that the triangles cover.
#ifndef QELM_TOOLS_DEPTH_IMAGE_H
#define QELM_TOOLS_DEPTH_IMAGE_H

#include <span>
#include <vector>

#include "mesh/mesh.h"
#include "text/index.h"

namespace qelm::tool {

/// Points have x to the right and y down, in the picture's pixels, and z towards the viewer in the
/// same unit. A large picture has an image of fewer pixels, so that no picture takes long.
class DepthImage {
 public:
  /// Requires x in [0, width] and y in [0, height].
  DepthImage(std::span<const Point> vertices, const Mesh& mesh, double width, double height);

  /// False where the mesh hides a point that lies on it.
  bool shows(const Point& point) const;

 private:
  void draw(const Point& a, const Point& b, const Point& c);
  float& at(int x, int y) { return depth_[asIndex(y * width_ + x)]; }

  double scale_;  ///< the image's pixels for one of the picture
  int width_;
  int height_;
  std::vector<float> depth_;
};

}  // namespace qelm::tool

#endif
