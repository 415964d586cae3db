// Reordering the children of a grid by dragging them.
'use strict';

const kDragDistance = 6;  // pixels from where the button went down, before a press becomes a drag

/**
 * A child of `grid` that matches `selector` follows the pointer that drags it, and the others make
 * room. Escape puts it back.
 * @param {HTMLElement} grid
 * @param {string} selector
 * @param {(item: any) => void} dropped Told once, when a child has been put down at another place.
 */
function makeSortable(grid, selector, dropped) {
  /** @type {any} What is being dragged; null without a press. */
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
    // The grid may have been filled anew, or the button have gone up elsewhere.
    if (!drag.item.isConnected || event.buttons === 0) return finish(false);
    if (!drag.isMoving) {
      const {start} = drag;
      if (Math.hypot(event.clientX - start.x, event.clientY - start.y) < kDragDistance) return;
      drag.isMoving = true;
      drag.item.classList.add('dragged');
      // By the grid, which stays where it is: an element that is moved loses the pointer.
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
