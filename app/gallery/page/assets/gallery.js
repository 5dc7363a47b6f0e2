'use strict';

// Connects the parts of the page. The address holds the entry, search, order and open picture, so a reload keeps them and the
// browser's Back button returns to the previous entry.

function startGallery(catalogue) {
  const byId = (id) => document.getElementById(id);
  const all = catalogue.all();
  const state = {entry: all, query: '', sort: 'folder', picture: null};
  let shown = [];  // pictures

  const choose = (entry) => {
    state.entry = entry;
    drawer.close();
    show();
    remember('pushState');
  };
  const indexEntries = catalogue.indexEntries();
  const folderEntries = catalogue.folderEntries();
  const indexes = new Tree(byId('sidebar'), byId('indexes'), indexEntries, choose);
  const folders = new Tree(byId('sidebar'), byId('folders'), folderEntries, choose);
  const viewer = new Viewer(catalogue, {
    changed(picture) {
      state.picture = picture;
      remember('replaceState');
    },
    closed(position) {
      state.picture = null;
      remember('replaceState');
      grid.focus(position);
    },
  });
  const grid = new Grid(byId('scroller'), byId('pictures'), catalogue, (position) => viewer.open(shown, position));
  const drawer = connectDrawer(byId('menu'), byId('sidebar'), byId('scrim'));

  function show() {
    shown = catalogue.select(state.entry, state.query, state.sort);
    byId('title').textContent = state.entry.title;
    byId('meaning').textContent = state.entry.note;
    byId('count').textContent = picturesText(shown.length);
    byId('search').value = state.query;
    byId('sort').value = state.sort;
    byId('all').setAttribute('aria-current', String(state.entry === all));
    document.title = state.entry === all ? 'Catalogue' : `${state.entry.title} \u2013 Catalogue`;
    indexes.mark(state.entry.id);
    folders.mark(state.entry.id);
    showNothing();
    grid.show(shown);
  }

  function showNothing() {
    const isSearch = state.query.trim() !== '';
    byId('nothing').hidden = shown.length > 0;
    byId('pictures').hidden = shown.length === 0;
    byId('clear').hidden = !isSearch;
    byId('nothing-text').textContent = catalogue.count === 0 ?
        'The catalogue is empty. File pictures with `catalogcore sort`, then run `catalogcore gallery` again.' :
        isSearch ? `No name contains \u201c${state.query.trim()}\u201d here.` : 'No picture is filed here.';
  }

  function remember(how) {
    const parameters = new URLSearchParams(state.entry.id ? [splitOnce(state.entry.id)] : []);
    if (state.query) parameters.set('q', state.query);
    if (state.sort !== 'folder') parameters.set('sort', state.sort);
    if (state.picture !== null) parameters.set('picture', catalogue.path(state.picture));
    if (location.hash.slice(1) === String(parameters)) return;
    try { history[how](null, '', `#${parameters}`); } catch { /* browsers limit the rate of calls */ }
  }

  function restore() {
    const parameters = new URLSearchParams(location.hash.slice(1));
    const id = ['index', 'folder'].filter((name) => parameters.has(name)).map((name) => `${name}=${parameters.get(name)}`)[0];
    state.entry = indexes.find(id) ?? folders.find(id) ?? all;
    state.query = parameters.get('q') ?? '';
    state.sort = ['name', 'newest', 'oldest'].find((sort) => sort === parameters.get('sort')) ?? 'folder';
    show();
    const path = parameters.get('picture');
    const position = path ? shown.findIndex((picture) => catalogue.path(picture) === path) : -1;
    if (position >= 0) viewer.open(shown, position);
    else if (viewer.isOpen) viewer.close();
  }

  function search() {
    state.query = byId('search').value;
    show();
    remember('replaceState');
  }

  let typing = 0;
  byId('search').addEventListener('input', () => {
    clearTimeout(typing);
    typing = setTimeout(search, 120);
  });
  byId('search').addEventListener('keydown', (event) => {
    if (event.key !== 'ArrowDown' && event.key !== 'Enter') return;
    event.preventDefault();
    clearTimeout(typing);
    search();
    grid.focusActive();
  });
  byId('clear').addEventListener('click', () => {
    byId('search').value = '';
    search();
    byId('search').focus();
  });
  byId('sort').addEventListener('change', () => {
    state.sort = byId('sort').value;
    show();
    remember('replaceState');
  });
  byId('all').addEventListener('click', () => choose(all));
  byId('all').querySelector('.count').textContent = numberText.format(catalogue.count);
  byId('skip').addEventListener('click', (event) => {
    event.preventDefault();
    grid.focusActive();
  });
  theme.connect(byId('theme'));
  addEventListener('popstate', restore);

  for (const entry of indexEntries) indexes.expand(entry.id);
  if (folderEntries.length === 1) folders.expand(folderEntries[0].id);
  restore();
}

const splitOnce = (id) => [id.slice(0, id.indexOf('=')), id.slice(id.indexOf('=') + 1)];

// In narrow windows the sidebar is a drawer; a closed drawer is inert.
function connectDrawer(button, sidebar, scrim) {
  const narrow = matchMedia('(max-width: 52rem)');
  const set = (isOpen) => {
    const wasOpen = button.getAttribute('aria-expanded') === 'true';
    button.setAttribute('aria-expanded', String(isOpen));
    document.body.classList.toggle('drawer-open', isOpen);
    sidebar.inert = narrow.matches && !isOpen;
    if (isOpen) sidebar.querySelector('button').focus();
    if (wasOpen && !isOpen && narrow.matches) button.focus();
  };
  button.addEventListener('click', () => set(button.getAttribute('aria-expanded') !== 'true'));
  scrim.addEventListener('click', () => set(false));
  narrow.addEventListener('change', () => set(false));
  sidebar.addEventListener('keydown', (event) => {
    if (event.key === 'Escape') set(false);
  });
  set(false);
  return {close: () => set(false)};
}

if (typeof CATALOGUE === 'undefined') {
  document.getElementById('meaning').textContent = 'data.js could not be read. Run `catalogcore gallery` again.';
} else {
  startGallery(new Catalogue(CATALOGUE));
}
