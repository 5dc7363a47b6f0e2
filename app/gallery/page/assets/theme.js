'use strict';

// Light or dark theme: the system's until the reader chooses. This script runs before the page is drawn, so the page never
// appears in the wrong theme.
const theme = {
  // A browser may deny storage to a page on disk; then the choice lasts until the page is closed.
  remembered() {
    try { return localStorage.getItem('catalogue-theme'); } catch { return null; }
  },

  remember(name) {
    try { localStorage.setItem('catalogue-theme', name); } catch { /* denied */ }
  },

  isDark() {
    const chosen = document.documentElement.dataset.theme;
    return chosen ? chosen === 'dark' : matchMedia('(prefers-color-scheme: dark)').matches;
  },

  // Makes the button switch the theme and announce it.
  connect(button) {
    const show = () => button.setAttribute('aria-pressed', String(theme.isDark()));
    button.addEventListener('click', () => {
      const name = theme.isDark() ? 'light' : 'dark';
      document.documentElement.dataset.theme = name;
      theme.remember(name);
      show();
    });
    matchMedia('(prefers-color-scheme: dark)').addEventListener('change', show);
    show();
  },
};

if (['light', 'dark'].includes(theme.remembered())) document.documentElement.dataset.theme = theme.remembered();
