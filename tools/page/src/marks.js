// What lies on the surface besides curves: edges, fixed vertices, a chosen curve, a measured line.
import { BufferAttribute, BufferGeometry, Group, LineBasicMaterial, LineSegments, Points } from 'three';
import { LineSegments2 } from 'three/addons/lines/LineSegments2.js';
import { LineSegmentsGeometry } from 'three/addons/lines/LineSegmentsGeometry.js';
import { edgesOf, fixedMarks } from './edges.js';
import { dotMaterial, kNearer, lineMaterial } from './lines.js';

const kFixedWidth = 5; // pixels, with its rim
const kRim = 1.25; // pixels
export const kInk = 0x0f1216; // of curves on the heat map, and round what is fixed
const kChosen = 0xff2e63; // is in no ramp

/** All edges, as thin lines. */
export function edgeLines(mesh) {
  const geometry = new BufferGeometry();
  geometry.setAttribute('position', new BufferAttribute(Float32Array.from(mesh.positions), 3));
  geometry.setIndex(new BufferAttribute(edgesOf(mesh), 1));
  return new LineSegments(geometry, new LineBasicMaterial({ transparent: true }));
}

const placesOf = (mesh, vertices) =>
  Float32Array.from({ length: 3 * vertices.length }, (_, k) => mesh.positions[3 * vertices[(k / 3) | 0] + (k % 3)]);

function dots(places, options, nearer) {
  const geometry = new BufferGeometry();
  geometry.setAttribute('position', new BufferAttribute(places, 3));
  return new Points(geometry, dotMaterial(options, nearer));
}

/** White, with a dark rim: lines between fixed neighbours, dots where there is none. */
export function fixedGroup(mesh, fixedBy) {
  const marks = fixedMarks(mesh, fixedBy);
  const lines = new LineSegmentsGeometry();
  if (marks.lines.length > 0) lines.setPositions(placesOf(mesh, marks.lines));
  const group = new Group();
  const parts = [
    { color: kInk, width: kFixedWidth, nearer: kNearer },
    { color: 0xffffff, width: kFixedWidth - 2 * kRim, nearer: kNearer ** 2 },
  ];
  for (const { color, width, nearer } of parts) {
    const material = lineMaterial({ color, linewidth: width, depthWrite: false }, nearer);
    if (marks.lines.length > 0) group.add(new LineSegments2(lines, material));
    // Without dots there would still be a shader to compile.
    if (marks.dots.length > 0)
      group.add(dots(placesOf(mesh, marks.dots), { color, size: width + 4 }, nearer));
  }
  // One after another, on all else: a rim of one line must not cover the next one.
  group.children.forEach((part, k) => (part.renderOrder = 1 + k));
  return group;
}

/** The segments of one curve, on top of all curves. */
export function chosenCurve({ points, curveOf }, curve) {
  const chosen = [];
  curveOf.forEach((c, s) => {
    if (c === curve) chosen.push(...points.subarray(6 * s, 6 * s + 6));
  });
  const group = new Group();
  const geometry = new LineSegmentsGeometry();
  geometry.setPositions(chosen);
  const looks = [{ color: 0xffffff, linewidth: 6.5 }, { color: kChosen, linewidth: 4 }];
  looks.forEach((look, k) => {
    const line = new LineSegments2(geometry, lineMaterial({ ...look, depthWrite: false }, kNearer ** (2 + k)));
    line.renderOrder = 10 + k;
    group.add(line);
  });
  return group;
}

/** Measured points, one or two, packed, and the straight line between them, through whatever is there. */
export function measuredLine(points) {
  const group = new Group();
  const places = Float32Array.from(points);
  const looks = [{ color: 0xffffff, linewidth: 4, size: 13 }, { color: kChosen, linewidth: 2, size: 9 }];
  looks.forEach(({ color, linewidth, size }, k) => {
    const parts = [dots(places, { color, size, depthTest: false }, 1)];
    if (places.length === 6) {
      const geometry = new LineSegmentsGeometry();
      geometry.setPositions(places);
      parts.unshift(new LineSegments2(geometry, lineMaterial({ color, linewidth, depthTest: false }, 1)));
    }
    for (const part of parts) {
      part.renderOrder = 20 + k;
      part.frustumCulled = false;
      group.add(part);
    }
  });
  return group;
}

/** Gives back what a group's parts hold on the graphics card. */
export function discard(group) {
  group?.traverse((part) => {
    part.geometry?.dispose();
    part.material?.dispose();
  });
  group?.removeFromParent();
}
