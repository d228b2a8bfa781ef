// A whole program of docs/hosting.md; snippets.py closes its window.
//@ docs/hosting.md: Kind::TopLevel
