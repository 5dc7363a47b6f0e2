'use strict';

// Light or dark: what the system asks for, until the reader chooses. This script runs before the page is drawn, so that
// the page is never drawn in the other one first.
const theme = {
  // Browsers may deny a page on disk any storage; the choice then lasts as long as the page.
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

  // Makes the button switch, and tell, the theme.
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
