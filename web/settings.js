// What the page remembers: the token for this tab, everything else for this browser.
const prefix = "ordomart.";

function read(key, standard) {
  try {
    const text = localStorage.getItem(prefix + key);
    return text === null ? standard : JSON.parse(text);
  } catch {
    return standard;  // storage that is switched off or holds something else
  }
}

export function remember(key, value) {
  try {
    localStorage.setItem(prefix + key, JSON.stringify(value));
  } catch {
    // A full or forbidden storage costs the memory, not the page.
  }
}

export function remembered(key, standard) {
  const value = read(key, standard);
  return typeof value === typeof standard && Array.isArray(value) === Array.isArray(standard) ? value : standard;
}

// The token stands in the address, behind "#", where no server log sees it; a reload finds it in either place.
export function token() {
  const given = new URLSearchParams(location.hash.slice(1)).get("token");
  try {
    if (given) sessionStorage.setItem(prefix + "token", given);
    return given ?? sessionStorage.getItem(prefix + "token") ?? "";
  } catch {
    return given ?? "";
  }
}
