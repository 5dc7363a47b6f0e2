'use strict';

// Updates the elements of a long list that are in the document: adds those for `keys` and removes all others. `elements` maps
// keys to the elements in the document; make(key) creates an element. Elements keep the order of `keys`, in which screen
// readers read them.
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
