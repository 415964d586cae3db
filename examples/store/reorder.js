// Reordering the children of a grid by dragging them.
'use strict';

const kDragDistance = 6;  // pixels before a press becomes a drag

/**
 * Lets the user drag the children of `grid` that match `selector`; the others make
 * room. Escape cancels.
 * @param {HTMLElement} grid
 * @param {string} selector
 * @param {(item: any) => void} dropped Called when a child was dropped at another position.
 */
function makeSortable(grid, selector, dropped) {
  /** @type {any} The dragged element; null without a press. */
  let drag = null;

  function follow({clientX, clientY}) {
    const {item} = drag;
    item.style.translate = '';
    const place = item.getBoundingClientRect();
    item.style.translate =
        `${clientX - drag.grip.x - place.left}px ${clientY - drag.grip.y - place.top}px`;
  }

  function makeRoom({clientX, clientY}) {
    const {item} = drag;
    const below = document.elementFromPoint(clientX, clientY)?.closest(selector);
    if (!below || below === item || below.parentNode !== grid) return;
    const isAhead = below.compareDocumentPosition(item) & Node.DOCUMENT_POSITION_FOLLOWING;
    if (isAhead) below.before(item); else below.after(item);
    item.scrollIntoView({block: 'nearest'});
  }

  function finish(isDropped) {
    if (!drag) return;
    const {item, next, pointer, isMoving} = drag;
    drag = null;
    if (!isMoving) return;
    if (grid.hasPointerCapture(pointer)) grid.releasePointerCapture(pointer);
    item.classList.remove('dragged');
    item.style.translate = '';
    if (!item.isConnected || item.nextElementSibling === next) return;
    if (isDropped) dropped(item); else grid.insertBefore(item, next);
  }

  grid.addEventListener('pointerdown', (event) => {
    const pressed = /** @type {Element} */ (event.target);
    const item = pressed.closest(selector);
    if (drag || event.button !== 0 || !item || pressed.closest('button')) return;
    const place = item.getBoundingClientRect();
    drag = {
      item,
      next: item.nextElementSibling,
      pointer: event.pointerId,
      start: {x: event.clientX, y: event.clientY},
      grip: {x: event.clientX - place.left, y: event.clientY - place.top},
      isMoving: false,
    };
  });

  grid.addEventListener('pointermove', (event) => {
    if (event.pointerId !== drag?.pointer) return;
    // The grid may have been refilled, or the button released elsewhere.
    if (!drag.item.isConnected || event.buttons === 0) return finish(false);
    if (!drag.isMoving) {
      const {start} = drag;
      if (Math.hypot(event.clientX - start.x, event.clientY - start.y) < kDragDistance) return;
      drag.isMoving = true;
      drag.item.classList.add('dragged');
      // Captured by the grid: a moved element loses the pointer.
      grid.setPointerCapture(drag.pointer);
    }
    makeRoom(event);
    follow(event);
  });

  grid.addEventListener('pointerup', (event) => {
    if (event.pointerId === drag?.pointer) finish(true);
  });
  grid.addEventListener('pointercancel', (event) => {
    if (event.pointerId === drag?.pointer) finish(false);
  });
  document.addEventListener('keydown', ({key}) => { if (key === 'Escape') finish(false); });
}
