// The mesh in three dimensions: heat map, level curves, edges, fixed vertices.
import {
  AmbientLight,
  BufferAttribute,
  BufferGeometry,
  Color,
  DataTexture,
  DirectionalLight,
  DoubleSide,
  Group,
  LinearFilter,
  LineBasicMaterial,
  LineSegments,
  Mesh,
  MeshLambertMaterial,
  PerspectiveCamera,
  Points,
  PointsMaterial,
  Raycaster,
  Scene,
  SRGBColorSpace,
  Vector2,
  Vector3,
  WebGLRenderer,
} from 'three';
import { LineMaterial } from 'three/addons/lines/LineMaterial.js';
import { LineSegments2 } from 'three/addons/lines/LineSegments2.js';
import { LineSegmentsGeometry } from 'three/addons/lines/LineSegmentsGeometry.js';
import { acceleratedRaycast, MeshBVH } from 'three-mesh-bvh';
import { levelSegments } from './contours.js';
import { kColourSteps } from './decode.js';
import { edgesOf, fixedMarks } from './edges.js';
import { rangeOf } from './levels.js';
import { normalise } from './normalise.js';
import { cornerNormals } from './normals.js';

// Distances are in half diagonals of the mesh, which fits into a ball of radius 1.
const kNear = 0.002;
const kFieldOfView = 26; // degrees
const kFill = 0.94; // of the picture, at first
const kCurveWidth = 2.2; // pixels
const kFixedWidth = 5; // pixels, with its rim
const kRim = 1.25; // pixels

const kThemes = {
  light: { surface: 0xd9dde3, edge: 0x14171c, edgeOpacity: 0.22 },
  dark: { surface: 0x6a7480, edge: 0xffffff, edgeOpacity: 0.2 },
};
const kInk = 0x0f1216; // of curves on the heat map, and round what is fixed

/** 256 colours as a texture; a value from 0 to 1 is the first coordinate. */
function colourTexture(colours) {
  const texels = new Uint8Array(4 * kColourSteps);
  for (let k = 0; k < kColourSteps; ++k) {
    texels.set(colours.subarray(3 * k, 3 * k + 3), 4 * k);
    texels[4 * k + 3] = 255;
  }
  const texture = new DataTexture(texels, kColourSteps, 1);
  texture.colorSpace = SRGBColorSpace;
  texture.minFilter = LinearFilter;
  texture.magFilter = LinearFilter;
  texture.needsUpdate = true;
  return texture;
}

// The first step's middle lies half a texel inside the texture.
const textureCoordinate = (t) => (0.5 + t * (kColourSteps - 1)) / kColourSteps;

// What is drawn on the surface is drawn a little nearer, towards the eye: it stays where
// it is on the screen, and the surface, however steep, does not cut into it.
const kNearer = 0.9993;

/** Replaces a line of a shader, which must be there. */
function patched(shader, before, after) {
  if (!shader.includes(before)) throw new Error(`the shader has no ${before}`);
  return shader.replace(before, after);
}

export class SurfaceScene {
  /** data: what decodeMesh() returns. Draws when something changes, not all the time. */
  constructor(canvas, data) {
    this.canvas = canvas;
    this.data = data;
    this.place = normalise(data.positions);
    this.mesh = { positions: this.place.local, triangles: data.triangles };
    this.shown = { heatMap: true, curves: true, edges: false, fixed: true };
    this.levels = [];
    this.cutter = (values, levels) => levelSegments(this.mesh, values, levels);
    this.theme = 'light';
    this.renderer = new WebGLRenderer({ canvas, antialias: true, alpha: true });
    this.renderer.setPixelRatio(Math.min(window.devicePixelRatio, 2));
    this.scene = new Scene();
    this.camera = new PerspectiveCamera(kFieldOfView, 1);
    this.camera.up.set(0, 0, 1);
    this.raycaster = new Raycaster();
    this.#addLights();
    this.#addSurface();
    this.#addCurves();
    this.#addFixed();
    this.setField(data.field);
  }

  /** Another field on the same mesh, cut at other levels or at the ones before. */
  setField(field, levels = this.levels) {
    const range = rangeOf(field);
    Object.assign(this, { field, range, levels });
    const span = range.high - range.low || 1;
    const uv = this.surface.geometry.attributes.uv;
    const { triangles } = this.mesh;
    for (let k = 0; k < triangles.length; ++k)
      uv.array[2 * k] = textureCoordinate((field[triangles[k]] - range.low) / span);
    uv.needsUpdate = true;
    this.#cut();
    this.draw();
  }

  setLevels(levels) {
    this.levels = levels;
    this.#cut();
    this.draw();
  }

  /** Any of {heatMap, curves, edges, fixed}. */
  show(what) {
    Object.assign(this.shown, what);
    if (this.shown.edges) this.#addEdges();
    this.#applyLook();
    this.draw();
  }

  /** 'light' or 'dark'. */
  setTheme(theme) {
    this.theme = theme;
    this.#applyLook();
    this.draw();
  }

  /** Of the canvas, in CSS pixels; `left` and `right` of them are covered at its sides. */
  setSize(width, height, { left = 0, right = 0 } = {}) {
    Object.assign(this, { width, height, covered: left + right });
    this.renderer.setSize(width, height, false);
    this.camera.aspect = width / Math.max(1, height);
    this.camera.setViewOffset(width, height, (right - left) / 2, 0, width, height);
    this.draw();
  }

  /**
   * As a picture of the mesh from `toward` (a Vector3) that fills the canvas but for what is
   * covered. Returns the point that the camera looks at.
   */
  lookFrom(toward, up) {
    const forward = toward.clone().normalize();
    const right = up.clone().cross(forward).normalize();
    const above = forward.clone().cross(right);
    const { target, distance } = this.#fit(forward, right, above);
    this.camera.up.copy(up);
    this.camera.position.copy(target).addScaledVector(forward, distance);
    this.camera.lookAt(target);
    this.draw();
    return target;
  }

  /**
   * What lies under a point of the canvas (CSS pixels): {triangle, value, position} with the
   * position in the caller's units, or null.
   */
  pick(x, y) {
    const { clientWidth, clientHeight } = this.canvas;
    const point = new Vector2((2 * x) / clientWidth - 1, 1 - (2 * y) / clientHeight);
    this.raycaster.setFromCamera(point, this.camera);
    const geometry = this.surface.geometry;
    geometry.boundsTree ??= new MeshBVH(geometry, { indirect: true });
    const [hit] = this.raycaster.intersectObject(this.surface, false);
    if (!hit) return null;
    const corner = hit.face.a - (hit.face.a % 3);
    return {
      triangle: corner / 3,
      value: this.#valueAt(corner, hit.point),
      position: hit.point.toArray().map((c, k) => c * this.place.radius + this.place.centre[k]),
    };
  }

  /** Draws before the next frame, once. */
  draw() {
    this.frame ??= requestAnimationFrame(() => this.drawNow());
  }

  drawNow() {
    cancelAnimationFrame(this.frame);
    this.frame = undefined;
    this.light.position.copy(this.camera.position);
    this.#fitDepth();
    this.renderer.render(this.scene, this.camera);
    this.drawn = (this.drawn ?? 0) + 1;
  }

  /** Depths as fine as they can be: from the mesh's nearest possible point to its farthest. */
  #fitDepth() {
    const distance = this.camera.position.length();
    this.camera.near = Math.max(kNear, 0.99 * (distance - 1));
    this.camera.far = distance + 1.01;
    this.camera.updateProjectionMatrix();
  }

  #addLights() {
    // Mostly ambient: colours are to be read off, shading is only to show the shape.
    this.scene.add(new AmbientLight(0xffffff, 2.0));
    this.light = new DirectionalLight(0xffffff, 1.25);
    this.scene.add(this.light);
  }

  #addSurface() {
    const { positions, triangles } = this.mesh;
    const geometry = new BufferGeometry();
    const corners = new Float32Array(3 * triangles.length);
    for (let k = 0; k < triangles.length; ++k)
      for (let c = 0; c < 3; ++c) corners[3 * k + c] = positions[3 * triangles[k] + c];
    geometry.setAttribute('position', new BufferAttribute(corners, 3));
    geometry.setAttribute('normal', new BufferAttribute(cornerNormals(this.mesh), 3));
    const uv = new Float32Array(2 * triangles.length).fill(0.5);
    geometry.setAttribute('uv', new BufferAttribute(uv, 2));
    this.heatMaterial = new MeshLambertMaterial({
      map: colourTexture(this.data.colours),
      side: DoubleSide,
    });
    this.plainMaterial = new MeshLambertMaterial({ side: DoubleSide });
    this.surface = new Mesh(geometry, this.heatMaterial);
    this.surface.raycast = acceleratedRaycast;
    this.scene.add(this.surface);
  }

  #addCurves() {
    this.curveMaterial = new LineMaterial({ linewidth: kCurveWidth, vertexColors: true });
    bringNearer(this.curveMaterial, kNearer);
    this.curves = new LineSegments2(new LineSegmentsGeometry(), this.curveMaterial);
    this.curves.frustumCulled = false;
    this.scene.add(this.curves);
  }

  /** Only when they are first wanted. */
  #addEdges() {
    if (this.edges) return;
    const { positions } = this.mesh;
    const geometry = new BufferGeometry();
    geometry.setAttribute('position', new BufferAttribute(Float32Array.from(positions), 3));
    geometry.setIndex(new BufferAttribute(edgesOf(this.mesh), 1));
    this.edges = new LineSegments(geometry, new LineBasicMaterial({ transparent: true }));
    this.scene.add(this.edges);
  }

  /** White, with a dark rim: lines between fixed neighbours, dots where there is none. */
  #addFixed() {
    const { lines, dots } = fixedMarks(this.mesh, this.data.fixedBy);
    const places = (vertices) =>
      Float32Array.from({ length: 3 * vertices.length }, (_, k) => {
        return this.mesh.positions[3 * vertices[(k / 3) | 0] + (k % 3)];
      });
    const lineGeometry = new LineSegmentsGeometry();
    if (lines.length > 0) lineGeometry.setPositions(places(lines));
    const dotGeometry = new BufferGeometry();
    dotGeometry.setAttribute('position', new BufferAttribute(places(dots), 3));
    this.fixed = new Group();
    const parts = [
      { color: kInk, width: kFixedWidth, nearer: kNearer },
      { color: 0xffffff, width: kFixedWidth - 2 * kRim, nearer: kNearer ** 2 },
    ];
    for (const { color, width, nearer } of parts) {
      const material = new LineMaterial({ color, linewidth: width, depthWrite: false });
      bringNearer(material, nearer);
      if (lines.length > 0) this.fixed.add(new LineSegments2(lineGeometry, material));
      // Without dots there would still be a shader to compile.
      if (dots.length === 0) continue;
      const size = (width + 4) * this.renderer.getPixelRatio();
      this.fixed.add(new Points(dotGeometry, dotMaterial({ color, size }, nearer)));
    }
    // One after another, on all else: a rim of one line must not cover the next one.
    this.fixed.children.forEach((part, k) => (part.renderOrder = 1 + k));
    this.scene.add(this.fixed);
  }

  /** A value's colour in the heat map. */
  colourOf(value) {
    const t = (value - this.range.low) / (this.range.high - this.range.low || 1);
    const step = Math.round(Math.min(1, Math.max(0, t)) * (kColourSteps - 1));
    const [r, g, b] = this.data.colours.subarray(3 * step, 3 * step + 3);
    return new Color().setRGB(r / 255, g / 255, b / 255, SRGBColorSpace);
  }

  #cut() {
    const began = performance.now();
    this.segments = this.cutter(this.field, this.levels);
    this.cutTime = performance.now() - began;
    const geometry = new LineSegmentsGeometry();
    geometry.setPositions(this.segments.points);
    this.curves.geometry.dispose();
    this.curves.geometry = geometry;
    this.#applyLook();
  }

  /** Dark on the heat map, in their own colours without it. */
  #colourCurves() {
    const { levelOf } = this.segments;
    const dark = new Color(kInk);
    const colours = this.levels.map((l) => (this.shown.heatMap ? dark : this.colourOf(l)));
    const array = new Float32Array(6 * levelOf.length);
    levelOf.forEach((l, k) => {
      colours[l].toArray(array, 6 * k);
      colours[l].toArray(array, 6 * k + 3);
    });
    this.curves.geometry.setColors(array);
  }

  #applyLook() {
    const theme = kThemes[this.theme];
    this.plainMaterial.color.set(theme.surface);
    this.surface.material = this.shown.heatMap ? this.heatMaterial : this.plainMaterial;
    this.curves.visible = this.shown.curves && this.segments.levelOf.length > 0;
    this.curveMaterial.linewidth = this.shown.heatMap ? kCurveWidth : kCurveWidth * 1.4;
    this.#colourCurves();
    this.fixed.visible = this.shown.fixed;
    if (!this.edges) return;
    this.edges.visible = this.shown.edges;
    this.edges.material.color.set(theme.edge);
    this.edges.material.opacity = theme.edgeOpacity;
  }

  /** From barycentric coordinates of a point in the triangle that begins at `corner`. */
  #valueAt(corner, point) {
    const { positions, triangles } = this.mesh;
    const [a, b, c] = [0, 1, 2].map((k) =>
      new Vector3().fromArray(positions, 3 * triangles[corner + k]),
    );
    const normal = b.clone().sub(a).cross(c.clone().sub(a));
    const area = normal.lengthSq();
    const share = (p, q) => p.clone().sub(point).cross(q.clone().sub(point)).dot(normal) / area;
    const weights = [share(b, c), share(c, a), share(a, b)];
    return weights.reduce((sum, w, k) => sum + w * this.field[triangles[corner + k]], 0);
  }

  /**
   * From which point, seen along -forward, the camera has every vertex in sight, as large as
   * it can be. The lines of sight at each edge of the picture are planes through the camera:
   * the vertices farthest outwards say where these lie.
   */
  #fit(forward, right, above) {
    const tangent = Math.tan((kFieldOfView * Math.PI) / 360) * kFill;
    const free = (this.width - this.covered) / Math.max(1, this.height);
    const slopes = [tangent * free, tangent];
    const axes = [right, above];
    const outermost = [-Infinity, -Infinity, -Infinity, -Infinity];
    const { positions } = this.mesh;
    const point = new Vector3();
    for (let k = 0; k < positions.length; k += 3) {
      point.fromArray(positions, k);
      const depth = point.dot(forward);
      for (let a = 0; a < 2; ++a) {
        const across = point.dot(axes[a]);
        outermost[2 * a] = Math.max(outermost[2 * a], depth * slopes[a] + across);
        outermost[2 * a + 1] = Math.max(outermost[2 * a + 1], depth * slopes[a] - across);
      }
    }
    const distances = slopes.map((s, a) => (outermost[2 * a] + outermost[2 * a + 1]) / (2 * s));
    const distance = Math.max(...distances, 2 * kNear);
    const target = new Vector3();
    for (const axis of axes)
      target.addScaledVector(axis, this.#middle(axis, forward, distance));
    return { target, distance };
  }

  /** Where along an axis the camera must be for what it sees to be in the middle. */
  #middle(axis, forward, distance) {
    const { positions } = this.mesh;
    const point = new Vector3();
    let middle = 0;
    for (let pass = 0; pass < 4; ++pass) {
      let low = Infinity;
      let high = -Infinity;
      for (let k = 0; k < positions.length; k += 3) {
        point.fromArray(positions, k);
        const slope = (point.dot(axis) - middle) / (distance - point.dot(forward));
        low = Math.min(low, slope);
        high = Math.max(high, slope);
      }
      middle += ((low + high) / 2) * distance;
    }
    return middle;
  }
}

/** For lines: see kNearer. A uniform, so that lines alike in all else share a program. */
function bringNearer(material, nearer) {
  material.uniforms.nearer = { value: nearer };
  material.vertexShader = patched(
    `uniform float nearer;\n${material.vertexShader}`,
    'vec4 end = modelViewMatrix * vec4( instanceEnd, 1.0 );',
    `vec4 end = modelViewMatrix * vec4( instanceEnd, 1.0 );
     start.xyz *= nearer;
     end.xyz *= nearer;`,
  );
}

/** Round points with soft rims, of a size in pixels. */
function dotMaterial(options, nearer) {
  const material = new PointsMaterial({ ...options, sizeAttenuation: false, transparent: true, depthWrite: false });
  material.onBeforeCompile = (shader) => {
    shader.vertexShader = patched(
      shader.vertexShader,
      '#include <project_vertex>',
      `#include <project_vertex>
       gl_Position = projectionMatrix * vec4(${nearer} * mvPosition.xyz, 1.0);`,
    );
    shader.fragmentShader = patched(
      shader.fragmentShader,
      '#include <alphatest_fragment>',
      `float rim = length(gl_PointCoord - 0.5);
       diffuseColor.a *= 1.0 - smoothstep(0.5 - fwidth(rim), 0.5, rim);
       if (diffuseColor.a < 0.01) discard;`,
    );
  };
  return material;
}
