'use strict';

// Brings the elements of a long list into the page, and takes those out that are not wanted any more. `keys` are the
// wanted ones, in the order of the list: that is the order in which the page is read aloud. `elements` (by key) are those
// in the page; make(key) gives a new one.
function keepInPage(list, elements, keys, make) {
  const wanted = new Set(keys);
  for (const [key, element] of elements) {
    if (wanted.has(key)) continue;
    element.remove();
    elements.delete(key);
  }
  let next = null;
  for (const key of keys.toReversed()) {
    if (!elements.has(key)) {
      elements.set(key, make(key));
      list.insertBefore(elements.get(key), next);
    }
    next = elements.get(key);
  }
}

function setAttributes(element, attributes) {
  for (const [name, value] of Object.entries(attributes)) element.setAttribute(name, value);
}
