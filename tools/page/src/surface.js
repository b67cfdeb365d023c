// The mesh in three dimensions: heat map, level curves, edges, fixed vertices.
import {
  AmbientLight,
  BufferAttribute,
  BufferGeometry,
  Color,
  DirectionalLight,
  DoubleSide,
  Mesh,
  MeshLambertMaterial,
  PerspectiveCamera,
  Raycaster,
  Scene,
  SRGBColorSpace,
  Vector2,
  Vector3,
  WebGLRenderer,
} from 'three';
import { LineSegments2 } from 'three/addons/lines/LineSegments2.js';
import { LineSegmentsGeometry } from 'three/addons/lines/LineSegmentsGeometry.js';
import { acceleratedRaycast, MeshBVH } from 'three-mesh-bvh';
import { coarseIndex, coarseSegments, kCoarseForms, kFewTriangles } from './coarse.js';
import { segmentsOf, traceCurves } from './curves.js';
import { colourTexture, textureCoordinate } from './colours.js';
import { kColourSteps } from './decode.js';
import { fit, outermost } from './fit.js';
import { surfaceGeometry, valueAt } from './geometry.js';
import { rangeOf } from './levels.js';
import { curveMaterial, kNearer, setSpacing } from './lines.js';
import { chosenCurve, discard, edgeLines, fixedGroup, kInk, measuredLine } from './marks.js';
import { Motion } from './motion.js';
import { normalise } from './normalise.js';
import { projected } from './raster.js';
import { gapsOf } from './spacing.js';

// Distances are in half diagonals of the mesh, which fits into a ball of radius 1.
const kNear = 0.002;
const kFieldOfView = 26; // degrees
const kSlope = Math.tan((kFieldOfView * Math.PI) / 360);
const kCurveWidth = 2.2; // pixels
const kLeastGap = 3.4; // pixels between curves, on a screen of one dot for each
const kSharpest = 2; // dots for each pixel
const kMovingNearer = 0.996; // of lines on a coarse surface; see kNearer
const kRim = 8; // pixels round the mesh that its lines may take

const kThemes = {
  light: { surface: 0xd9dde3, edge: 0x14171c, edgeOpacity: 0.22 },
  dark: { surface: 0x6a7480, edge: 0xffffff, edgeOpacity: 0.2 },
};

/** A renderer, or null where there is no WebGL 2. */
function rendererFor(canvas) {
  const options = { antialias: true, alpha: true };
  // Asked first: three.js complains on the console besides throwing.
  const context = canvas.getContext('webgl2', { ...options, depth: true, powerPreference: 'high-performance' });
  return context && new WebGLRenderer({ canvas, context, ...options });
}

export class SurfaceScene {
  /**
   * data: what decodeMesh() returns. Draws when something changes, not all the time. Where there
   * is no WebGL 2, `paint(scene)` draws instead. `fixedRange`: [low, high], the values at the ends of
   * the colours; null: the field's own.
   */
  constructor(canvas, data, paint, fixedRange = null) {
    this.canvas = canvas;
    this.data = data;
    this.paint = paint;
    this.fixedRange = fixedRange;
    this.place = normalise(data.positions);
    this.mesh = { positions: this.place.local, triangles: data.triangles };
    this.outermost = outermost(this.place.local);
    this.shown = { heatMap: true, curves: true, edges: false, fixed: true, values: false };
    this.levels = [];
    this.hidden = new Set();
    this.free = [];
    this.cutter = (values, levels) => traceCurves(this.mesh, values, levels);
    this.theme = 'light';
    this.renderer = rendererFor(canvas);
    this.pixelRatio = Math.min(window.devicePixelRatio, kSharpest);
    this.renderer?.setPixelRatio(this.pixelRatio);
    this.scene = new Scene();
    this.camera = new PerspectiveCamera(kFieldOfView, 1);
    this.raycaster = new Raycaster();
    this.afterDraw = () => {};
    const isLarge = data.triangles.length > 3 * kFewTriangles;
    this.motion = new Motion(isLarge ? kCoarseForms.length : 0, () => this.#applyMotion());
    this.coarse = []; // coarse forms of the surface, made when they are needed
    this.#addLights();
    this.#addSurface();
    this.#addCurves();
    this.fixed = fixedGroup(this.mesh, data.fixedBy);
    this.scene.add(this.fixed);
  }

  /** Another field on the same mesh, cut at other levels or at the ones before. */
  setField(field, levels = this.levels) {
    Object.assign(this, { field, range: rangeOf(field), levels });
    const { low, high } = this.colourRange;
    const { uv } = this.surface.geometry.attributes;
    for (let k = 0; k < uv.array.length; ++k)
      uv.array[k] = textureCoordinate((field[this.vertexOf[k]] - low) / (high - low || 1));
    uv.needsUpdate = true;
    this.#cut();
    this.draw();
  }

  /** {low, high}: the values at the ends of the colours. */
  get colourRange() {
    return this.fixedRange ? { low: this.fixedRange[0], high: this.fixedRange[1] } : this.range;
  }

  setLevels(levels) {
    this.levels = levels;
    this.#cut();
    this.draw();
  }

  /** Levels that are not drawn, a Set of values. */
  setHidden(hidden) {
    this.hidden = hidden;
    this.#space();
    this.draw();
  }

  isLevelShown = (l) => !this.hidden.has(this.levels[l]);

  /** Any of {heatMap, curves, edges, fixed, values}. */
  show(what) {
    Object.assign(this.shown, what);
    if (this.shown.edges && !this.edges) this.scene.add((this.edges = edgeLines(this.mesh)));
    this.#applyLook();
    this.draw();
  }

  /** 'light' or 'dark'. */
  setTheme(theme) {
    this.theme = theme;
    this.#applyLook();
    this.draw();
  }

  /** One curve by number stands out, or none (null). */
  choose(curve) {
    discard(this.chosen);
    this.chosen = curve === null ? null : chosenCurve(this.segments, curve);
    if (this.chosen) this.scene.add(this.chosen);
    this.draw();
  }

  /** Points in the scene's coordinates, none to two of them: a line between two. */
  setMeasured(points) {
    discard(this.measured);
    this.measured = points.length === 0 ? null : measuredLine(points.flat());
    if (this.measured) this.scene.add(this.measured);
    this.draw();
  }

  /** Of the canvas, in CSS pixels; `free`: rectangles that no card covers any of. */
  setSize(width, height, free) {
    Object.assign(this, { width, height, free });
    if (this.renderer) this.renderer.setSize(width, height, false);
    else Object.assign(this.canvas, { width, height });
    this.camera.aspect = width / Math.max(1, height);
    this.#centreOn(this.rectangle ?? { left: 0, top: 0, right: width, bottom: height });
    this.draw();
  }

  /**
   * As a picture of the mesh from `toward` (a Vector3) that fills what is free of the canvas.
   * Returns the point that the camera looks at.
   */
  lookFrom(toward, up) {
    const { target, distance, rectangle, forward } = this.#fit(toward, up);
    this.camera.up.copy(up);
    this.camera.position.copy(target).addScaledVector(forward, Math.max(distance, 2 * kNear));
    this.camera.lookAt(target);
    this.#centreOn(rectangle);
    this.draw();
    return target;
  }

  /** How far away the camera would be then. */
  lookDistance(toward, up) {
    return this.#fit(toward, up).distance;
  }

  #fit(toward, up) {
    const forward = toward.clone().normalize();
    const right = up.clone().cross(forward).normalize();
    const above = forward.clone().cross(right);
    return { ...fit(this.outermost, { forward, right, above }, kSlope, this, this.free), forward };
  }

  /**
   * What lies under a point of the canvas (CSS pixels): {triangle, value, local, position} with
   * the position in the caller's units, or null.
   */
  pick(x, y) {
    const point = new Vector2((2 * x) / this.width - 1, 1 - (2 * y) / this.height);
    this.raycaster.setFromCamera(point, this.camera);
    const [hit] = this.#intersections();
    if (!hit) return null;
    return {
      triangle: hit.faceIndex,
      value: valueAt(this.mesh, this.field, hit.faceIndex, hit.point),
      local: hit.point.toArray(),
      position: this.toCaller(hit.point.toArray()),
    };
  }

  /** A point of the scene in the caller's units. */
  toCaller = (local) => local.map((c, k) => c * this.place.radius + this.place.centre[k]);

  /** Whether nothing of the mesh lies between the eye and a point on it. */
  sees(point) {
    const eye = this.camera.position;
    const distance = eye.distanceTo(point);
    this.raycaster.set(eye, point.clone().sub(eye).normalize());
    const [hit] = this.#intersections();
    return !hit || hit.distance > distance - 0.01;
  }

  /** Pixels that a length in the scene takes at a point. */
  pixelsAt(point) {
    return this.height / (2 * kSlope * this.camera.position.distanceTo(point));
  }

  /** The window's part that the mesh takes, {left, right, top, bottom}. */
  extent() {
    const points = projected(this.outermost, this.camera, this.width, this.height);
    const part = { left: this.width, right: 0, top: this.height, bottom: 0 };
    for (let k = 0; k < points.length; k += 3) {
      part.left = Math.max(0, Math.min(part.left, points[k] - kRim));
      part.right = Math.min(this.width, Math.max(part.right, points[k] + kRim));
      part.top = Math.max(0, Math.min(part.top, points[k + 1] - kRim));
      part.bottom = Math.min(this.height, Math.max(part.bottom, points[k + 1] + kRim));
    }
    return part;
  }

  /** Where that is slow, large meshes are drawn coarsely while they move, and all again at rest. */
  #applyMotion() {
    const { isOn, sharpness } = this.motion;
    const ratio = this.pixelRatio * (isOn ? sharpness : 1);
    if (this.renderer && this.renderer.getPixelRatio() !== ratio) this.renderer.setPixelRatio(ratio);
    const form = isOn ? this.motion.coarseness : 0; // 0: all there is
    if (form > 0) this.coarse[form - 1] ??= this.#addCoarse(kCoarseForms[form - 1].cells);
    this.surface.visible = form === 0;
    this.coarse.forEach((mesh, k) => (mesh.visible = k === form - 1));
    this.curveMaterial.uniforms.nearer.value = form > 0 ? kMovingNearer : kNearer;
    this.curves.geometry = this.drawnCurves[form].geometry;
    // Of the fixed vertices' marks their rims alone, and in the coarsest form nothing.
    const isLine = (part) => part.material.color?.getHex() !== 0xffffff;
    this.fixed.children.forEach((part) => (part.visible = form === 0 || (form < kCoarseForms.length && isLine(part))));
    this.draw();
  }

  /** Shares everything but the index with the whole surface. */
  #addCoarse(cells) {
    const { attributes, index } = this.surface.geometry;
    const geometry = new BufferGeometry();
    for (const [name, attribute] of Object.entries(attributes)) geometry.setAttribute(name, attribute);
    geometry.setIndex(new BufferAttribute(coarseIndex(attributes.position.array, index.array, cells), 1));
    const mesh = new Mesh(geometry, this.surface.material);
    mesh.frustumCulled = false;
    this.scene.add(mesh);
    return mesh;
  }

  /** Draws before the next frame, once. */
  draw() {
    this.frame ??= requestAnimationFrame(() => this.drawNow());
  }

  drawNow() {
    cancelAnimationFrame(this.frame);
    this.frame = undefined;
    if (!this.field) return;
    this.light.position.copy(this.camera.position);
    this.#fitDepth();
    if (this.renderer) this.renderer.render(this.scene, this.camera);
    else this.paint(this);
    this.drawn = (this.drawn ?? 0) + 1;
    this.motion.frame();
    this.afterDraw();
  }

  #intersections() {
    const { geometry } = this.surface;
    geometry.boundsTree ??= new MeshBVH(geometry, { indirect: true });
    this.raycaster.firstHitOnly = true;
    return this.raycaster.intersectObject(this.surface, false);
  }

  /** The camera looks at the middle of a rectangle of the window. */
  #centreOn(rectangle) {
    this.rectangle = rectangle;
    const { width, height } = this;
    const { left, right, top, bottom } = rectangle;
    this.camera.setViewOffset(width, height, (width - left - right) / 2, (height - top - bottom) / 2, width, height);
  }

  /** Depths as fine as they can be: from the mesh's nearest possible point to its farthest. */
  #fitDepth() {
    const distance = this.camera.position.length();
    this.camera.near = Math.max(kNear, 0.99 * (distance - 1));
    this.camera.far = distance + 1.01;
    this.camera.updateProjectionMatrix();
    this.camera.updateMatrixWorld();
  }

  #addLights() {
    // Mostly ambient: colours are to be read off, shading is only to show the shape.
    this.scene.add(new AmbientLight(0xffffff, 2.0));
    this.light = new DirectionalLight(0xffffff, 1.25);
    this.scene.add(this.light);
  }

  #addSurface() {
    const { geometry, vertexOf } = surfaceGeometry(this.mesh);
    this.vertexOf = vertexOf;
    this.heatMaterial = new MeshLambertMaterial({ map: colourTexture(this.data.colours), side: DoubleSide });
    this.plainMaterial = new MeshLambertMaterial({ side: DoubleSide });
    this.surface = new Mesh(geometry, this.heatMaterial);
    this.surface.raycast = acceleratedRaycast;
    this.scene.add(this.surface);
  }

  #addCurves() {
    // Finer screens tell finer lines apart.
    const least = kLeastGap / Math.sqrt(this.pixelRatio);
    this.curveMaterial = curveMaterial({ linewidth: kCurveWidth, vertexColors: true }, least);
    this.curves = new LineSegments2(new LineSegmentsGeometry(), this.curveMaterial);
    this.curves.frustumCulled = false;
    this.scene.add(this.curves);
  }

  /** A value's colour in the heat map. */
  colourOf(value) {
    const { low, high } = this.colourRange;
    const t = (value - low) / (high - low || 1);
    const step = Math.round(Math.min(1, Math.max(0, t)) * (kColourSteps - 1));
    const [r, g, b] = this.data.colours.subarray(3 * step, 3 * step + 3);
    return new Color().setRGB(r / 255, g / 255, b / 255, SRGBColorSpace);
  }

  #cut() {
    const began = performance.now();
    this.traced = this.cutter(this.field, this.levels);
    this.cutTime = performance.now() - began;
    this.segments = segmentsOf(this.traced);
    this.gaps = gapsOf(this.mesh, this.field, this.levels, this.traced);
    this.choose(null);
    this.drawnCurves?.forEach(({ geometry }) => geometry.dispose());
    const coarse = this.motion.coarsest > 0 ? kCoarseForms.map((form) => coarseSegments(this.traced, form.segments)) : [];
    this.drawnCurves = [this.segments, ...coarse].map((segments) => ({ geometry: new LineSegmentsGeometry(), segments }));
    for (const { geometry, segments } of this.drawnCurves) geometry.setPositions(segments.points);
    this.#space();
    this.#applyLook();
    this.#applyMotion();
  }

  #space() {
    for (const { geometry, segments } of this.drawnCurves)
      setSpacing(geometry, segments, this.gaps, this.isLevelShown);
  }

  /** Dark on the heat map, in their own colours without it. */
  #colourCurves() {
    const dark = new Color(kInk);
    const colours = this.levels.map((l) => (this.shown.heatMap ? dark : this.colourOf(l)));
    for (const { geometry, segments } of this.drawnCurves) {
      const array = new Float32Array(6 * segments.levelOf.length);
      segments.levelOf.forEach((l, k) => {
        colours[l].toArray(array, 6 * k);
        colours[l].toArray(array, 6 * k + 3);
      });
      geometry.setColors(array);
    }
  }

  #applyLook() {
    if (!this.segments) return;
    const theme = kThemes[this.theme];
    this.plainMaterial.color.set(theme.surface);
    this.surface.material = this.shown.heatMap ? this.heatMaterial : this.plainMaterial;
    for (const mesh of this.coarse) mesh.material = this.surface.material;
    this.curves.visible = this.shown.curves && this.segments.levelOf.length > 0;
    this.curveMaterial.linewidth = this.shown.heatMap ? kCurveWidth : kCurveWidth * 1.4;
    this.#colourCurves();
    this.fixed.visible = this.shown.fixed;
    if (!this.edges) return;
    this.edges.visible = this.shown.edges;
    this.edges.material.color.set(theme.edge);
    this.edges.material.opacity = theme.edgeOpacity;
  }
}
