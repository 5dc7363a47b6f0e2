'use strict';

// The catalogue of data.js (gallery_data.h describes its arrays), and the queries of the page. A picture is its position in
// these arrays. An entry is one line of a tree: {id, label, title, note, count, children, holds(picture)}.

const numberText = new Intl.NumberFormat('en-GB');
const dayText = new Intl.DateTimeFormat('en-GB', {day: 'numeric', month: 'short', year: 'numeric', timeZone: 'UTC'});
const timeText = new Intl.DateTimeFormat('en-GB', {dateStyle: 'long', timeStyle: 'short', timeZone: 'UTC'});

const picturesText = (count) => `${numberText.format(count)} ${count === 1 ? 'picture' : 'pictures'}`;

// The text without case and diacritics, for searching.
function fold(text) {
  if (/^[\x20-\x7e]*$/.test(text)) return text.toLowerCase();
  return text.normalize('NFD').replace(/\p{M}/gu, '').toLowerCase();
}

// The order of names: digits in names compare as numbers.
const sortKey = (text) => fold(text).replace(/\d+/g, (digits) => digits.padStart(12, '0'));

class Catalogue {
  static #MISSING = 1;
  static #THUMBNAIL = 2;
  static #PREVIEW = 4;
  static #COPY_NAME = 16;  // digits
  static #DOCUMENTS = 2;   // first digit of the index numbers of documents

  #data;
  #folderOf;   // of each picture
  #folded = null;
  #orders = new Map();

  constructor(data) {
    // Accepts only parents that precede their children, so that no index is below itself.
    const indexes = data.indexes.map(([number, parent, ...texts], at) => [number, parent < at ? parent : -1, ...texts]);
    this.#data = {...data, indexes};
    this.count = data.names.length;
    this.#folderOf = new Uint32Array(this.count);
    data.starts.forEach((start, folder) => this.#folderOf.fill(folder, start, data.starts[folder + 1] ?? this.count));
  }

  name(picture) { return this.#data.names[picture]; }
  folder(picture) { return this.#data.folders[this.#folderOf[picture]]; }
  path(picture) { return this.folder(picture) + this.name(picture); }
  width(picture) { return this.#data.widths[picture]; }
  height(picture) { return this.#data.heights[picture]; }
  resolution(picture) { return this.#data.resolutions[picture]; }
  isMissing(picture) { return this.#has(picture, Catalogue.#MISSING); }

  isDocument(picture) {
    const number = this.#data.indexes[this.#data.filed[picture]]?.[0] ?? 0;
    return Math.floor(number / 1e6) === Catalogue.#DOCUMENTS;
  }

  // Addresses of the copies of a picture (null: none) and of the picture itself.
  thumbnail(picture) { return this.#has(picture, Catalogue.#THUMBNAIL) ? this.#copy('thumbs', picture) : null; }
  preview(picture) { return this.#has(picture, Catalogue.#PREVIEW) ? this.#copy('previews', picture) : null; }
  original(picture) { return 'file://' + this.path(picture).split('/').map(encodeURIComponent).join('/'); }

  #has(picture, state) { return (Number(this.#data.states[picture]) & state) !== 0; }

  #copy(folder, picture) {
    const at = picture * Catalogue.#COPY_NAME;
    const name = this.#data.copies.slice(at, at + Catalogue.#COPY_NAME);
    return `${folder}/${name.slice(0, 2)}/${name}.jpg`;
  }

  day(picture) { return this.#dateText(picture, dayText); }
  time(picture) { return this.#dateText(picture, timeText); }

  // Dates in files have no time zone; they are parsed and printed in UTC.
  #dateText(picture, format) {
    const date = this.#data.dates[picture];
    if (date === 0) return '';
    const [year, month, day, hour, minute, second] = [1e10, 1e8, 1e6, 1e4, 1e2, 1].map((unit, i) =>
        Math.floor(date / unit) % (i === 0 ? 10000 : 100));
    return format.format(Date.UTC(year, month - 1, day, hour, minute, second));
  }

  // Names of the indexes above an index and its own, from the top.
  indexPath(picture) {
    const path = [];
    for (let at = this.#data.filed[picture]; at >= 0; at = this.#data.indexes[at][1]) path.unshift(this.#data.indexes[at][2]);
    return path;
  }

  meaning(picture) { return this.#data.indexes[this.#data.filed[picture]]?.[3] ?? ''; }

  // The pictures of an entry whose names contain all words of the query.
  select(entry, query, sort) {
    const words = fold(query).split(/\s+/).filter((word) => word !== '');
    if (words.length > 0) this.#folded ??= this.#data.names.map(fold);
    return this.#order(sort).filter((picture) =>
        entry.holds(picture) && words.every((word) => this.#folded[picture].includes(word)));
  }

  // All pictures sorted by "folder" (the order of data.js), "name", "newest" or "oldest" first.
  #order(sort) {
    if (!this.#orders.has(sort)) this.#orders.set(sort, this.#sorted(sort));
    return this.#orders.get(sort);
  }

  #sorted(sort) {
    const order = Uint32Array.from({length: this.count}, (_, picture) => picture);
    const dates = this.#data.dates;
    if (sort === 'newest') return order.sort((a, b) => dates[b] - dates[a] || a - b);
    if (sort === 'oldest') return order.sort((a, b) => (dates[a] || Infinity) - (dates[b] || Infinity) || a - b);
    if (sort !== 'name') return order;
    const keys = this.#data.names.map(sortKey);
    return order.sort((a, b) => (keys[a] < keys[b] ? -1 : keys[a] > keys[b] ? 1 : a - b));
  }

  all() { return {id: '', label: 'All pictures', title: 'All pictures', note: '', count: this.count, children: [], holds: () => true}; }

  // The top entries of the tree of indexes. An index holds its pictures and those of the indexes below it.
  indexEntries() {
    const {indexes, filed} = this.#data;
    const entries = indexes.map(([number, , name, meaning]) => ({
      id: `index=${number}`, label: name, title: name, note: meaning, count: 0, children: [], below: new Set(),
      holds(picture) { return this.below.has(filed[picture]); },
    }));
    const top = [];
    indexes.forEach(([, parent], at) => (parent < 0 ? top : entries[parent].children).push(entries[at]));
    const own = new Uint32Array(indexes.length);
    for (const at of filed) if (at >= 0) ++own[at];
    for (let start = 0; start < indexes.length; ++start) {
      for (let at = start; at >= 0; at = indexes[at][1]) {
        entries[at].below.add(start);
        entries[at].count += own[start];
      }
    }
    return top;
  }

  // The top entries of the tree of folders. A folder with nothing but one folder in it shares its line.
  folderEntries() {
    const top = this.#folderTree();
    let entries = top.children.map(joinOnlyChildren);
    const [root] = entries;
    if (entries.length === 1 && root.label === '' && root.children.length > 0 && !root.hasPictures) {
      entries = root.children;
      for (const entry of entries) entry.label = '/' + entry.label;
    }
    for (const entry of entries) entry.label ||= '/';
    return entries;
  }

  // Folders are sorted as in the tree, so only the path from the top to the last folder is kept.
  #folderTree() {
    const way = [folderEntry('', '', 0)];
    const leave = (depth, end) => {
      while (way.length > depth) way.pop().end = end;
    };
    this.#data.folders.forEach((folder, number) => {
      const names = folder.split('/').slice(0, -1);
      let depth = 0;
      while (depth < names.length && way[depth + 1]?.label === names[depth]) ++depth;
      leave(depth + 1, this.#data.starts[number]);
      for (; depth < names.length; ++depth) {
        const entry = folderEntry(names[depth], names.slice(0, depth + 1).join('/'), this.#data.starts[number]);
        way[depth].children.push(entry);
        way.push(entry);
      }
      way[depth].hasPictures = true;
    });
    const [top] = way;
    leave(0, this.count);
    return top;
  }
}

function folderEntry(label, path, start) {
  return {
    id: `folder=${path}/`, label, start, end: start, hasPictures: false, children: [],
    get title() { return this.label; },
    get note() { return this.id.slice('folder='.length); },
    get count() { return this.end - this.start; },
    holds(picture) { return picture >= this.start && picture < this.end; },
  };
}

function joinOnlyChildren(entry) {
  const names = [entry.label];
  while (entry.children.length === 1 && !entry.hasPictures) {
    entry = entry.children[0];
    names.push(entry.label);
  }
  entry.label = names.join('/');
  entry.children = entry.children.map(joinOnlyChildren);
  return entry;
}
