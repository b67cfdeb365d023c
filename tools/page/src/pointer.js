// Pointing at the mesh: a mouse that hovers, a click, a tap, a finger that stays.

const kStill = 6; // pixels that a click may move
const kHold = 380; // milliseconds until a finger that stays reads instead of turning

/**
 * Calls back with places on the canvas in CSS pixels:
 *   hover(x, y, isTouch)  the pointer is there without a button, or a finger has stayed and moves
 *   away()                it is not any more
 *   tap(x, y, isTouch)    it was pressed and let go there
 * `suspend(bool)` says when the finger does not turn the mesh.
 */
export function followPointer(canvas, { hover, away, tap, suspend }) {
  const pressed = new Map(); // pointers that are down, and where they came down
  let awaited = null; // where to look before the next frame
  let timer = 0;
  let reads = false; // a finger

  const soon = (event) => {
    if (!awaited) requestAnimationFrame(() => awaited && (hover(awaited.x, awaited.y, awaited.isTouch), (awaited = null)));
    awaited = { x: event.offsetX, y: event.offsetY, isTouch: event.pointerType === 'touch' };
  };
  const leave = () => ((awaited = null), away());
  const stopHolding = () => {
    clearTimeout(timer);
    if (reads) suspend(false);
    reads = false;
  };

  canvas.addEventListener('pointerdown', (event) => {
    const place = { x: event.offsetX, y: event.offsetY, isStill: event.button === 0, since: event.timeStamp };
    pressed.set(event.pointerId, place);
    leave();
    stopHolding();
    if (pressed.size > 1) {
      for (const other of pressed.values()) other.isStill = false;
    } else if (event.pointerType === 'touch') {
      timer = setTimeout(() => {
        if (!place.isStill) return;
        reads = true;
        suspend(true);
        soon(event);
      }, kHold);
    }
  });
  canvas.addEventListener('pointermove', (event) => {
    const place = pressed.get(event.pointerId);
    if (place && Math.hypot(event.offsetX - place.x, event.offsetY - place.y) > kStill) place.isStill = false;
    if (reads || !place) soon(event);
  });
  const up = (event) => {
    const place = pressed.get(event.pointerId);
    pressed.delete(event.pointerId);
    // On a busy machine a tap may come after the timer of a hold: the events know how long it was.
    const isHold = reads && event.timeStamp - place?.since >= kHold;
    stopHolding();
    if (!place?.isStill || isHold || event.type !== 'pointerup') return;
    awaited = null;
    tap(event.offsetX, event.offsetY, event.pointerType === 'touch');
  };
  canvas.addEventListener('pointerup', up);
  canvas.addEventListener('pointercancel', up);
  canvas.addEventListener('pointerleave', (event) => event.pointerType === 'touch' || leave());
  canvas.addEventListener('wheel', leave, { passive: true });
  canvas.addEventListener('contextmenu', (event) => event.preventDefault());
}
