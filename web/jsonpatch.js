// JSON Patch (RFC 6902) as the stream sends it: add, replace and remove.

function steps(pointer) {
  return pointer === "" ? [] : pointer.slice(1).split("/").map((s) => s.replaceAll("~1", "/").replaceAll("~0", "~"));
}

function change(parent, key, { op, value }) {
  if (!Array.isArray(parent)) {
    if (op === "remove") delete parent[key];
    else parent[key] = value;
    return;
  }
  const index = key === "-" ? parent.length : Number(key);
  if (!Number.isInteger(index) || index < 0 || index > parent.length) throw new Error(`no place ${key} in a list`);
  if (op === "add") parent.splice(index, 0, value);
  else if (op === "remove") parent.splice(index, 1);
  else parent[index] = value;
}

// Changes `document` and returns it; a new one where the patch replaces the whole.
export function patched(document, patch) {
  for (const operation of patch) {
    if (!["add", "replace", "remove"].includes(operation.op)) throw new Error(`cannot do ${operation.op}`);
    const path = steps(operation.path);
    if (path.length === 0) {
      document = operation.value;
      continue;
    }
    const key = path.pop();
    let parent = document;
    for (const step of path) parent = parent?.[step];
    if (parent === null || typeof parent !== "object") throw new Error(`nothing at ${operation.path}`);
    change(parent, key, operation);
  }
  return document;
}
