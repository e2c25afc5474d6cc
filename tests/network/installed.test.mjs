// The market as it is installed, into any prefix and as a Debian package: what lies where, and that it plays from there.
import assert from "node:assert/strict";
import { execFileSync, spawnSync } from "node:child_process";
import { chmod, mkdtemp, readdir, readFile, readlink, rename, rm, stat, writeFile } from "node:fs/promises";
import { tmpdir } from "node:os";
import path from "node:path";
import { after, before, test } from "node:test";

import { Player } from "./player.mjs";
import { program, root, Stage } from "./stage.mjs";

const build = path.dirname(program);
let folder, version;
before(async () => {
  folder = await mkdtemp(path.join(tmpdir(), "ordomart-installed-"));
  version = (await readFile(path.join(root, "CMakeLists.txt"), "utf8")).match(/project\(\w+ VERSION (\S+)/)[1];
});
after(() => rm(folder, { recursive: true, force: true }));

const prints = (command, ...words) => execFileSync(command, words, { encoding: "utf8", stdio: ["ignore", "pipe", "pipe"] });

// Nothing that is installed names the place where it was built.
async function isclean(directory) {
  const files = (await readdir(directory, { recursive: true, withFileTypes: true })).filter((one) => one.isFile());
  for (const one of files) {
    const file = path.join(one.parentPath ?? one.path, one.name);
    assert.ok(!(await readFile(file)).includes(root), file);
  }
  return files.length;
}

test("installed and then moved, it plays without terminal and environment, and stops in order", async (t) => {
  const first = path.join(folder, "first"), prefix = path.join(folder, "moved to another place");
  prints("cmake", "--install", build, "--strip", "--prefix", first);
  const units = ["ordomart.service", "ordomart-gateway.service"].map((name) => path.join(first, "lib/systemd/system", name));
  const verified = spawnSync("systemd-analyze", ["verify", "--man=no", ...units], { encoding: "utf8" });
  if (verified.error) t.diagnostic("there is no systemd-analyze here");
  else assert.deepEqual([verified.status, verified.stderr.split("\n").filter((line) => line.includes("ordomart"))], [0, []]);
  await rename(first, prefix);
  assert.ok(await isclean(path.join(prefix, "lib/ordomart")) > 100);

  const server = path.join(prefix, "bin/ordomart-server"), closed = path.join(folder, "closed");
  assert.equal(prints(server, "--version"), `ordomart-server ${version}\n`);
  assert.equal(JSON.parse(await readFile(path.join(prefix, "lib/ordomart/gateway/package.json"))).version, version);
  await writeFile(closed, `#!/bin/sh\nexec '${server}' "$@" <&-\n`);
  await chmod(closed, 0o755);
  const stage = await Stage.starts({ binary: closed, door: path.join(prefix, "bin/ordomart-gateway"),
                                     spawned: { cwd: "/", env: { PATH: path.dirname(process.execPath) + ":/usr/bin:/bin" } } });
  try {
    assert.equal(await readlink(`/proc/${stage.server.child.pid}/fd/0`), "/dev/null", "no file of the server's own is read as what somebody types");
    const alice = await Player.joins(stage.port, "Alice");
    alice.types("ordomart formmenu");
    await alice.chooses("Selling");
    await alice.asked("Orchard");
    assert.ok(await stage.money("Alice") > 0, "LLMoney is there");
    const page = await fetch(`${stage.origin}/`);
    assert.equal(page.status, 200);
    assert.match(await page.text(), /<title>Ordomart/);
    alice.leaves();
    assert.deepEqual([await stage.gateway.ends(), await stage.server.ends()], [0, 0]);
  } finally {
    await stage.ends();
  }
});

test("the package has everything in its place, asks for what it needs, and holds the operator's settings", async () => {
  prints("cpack", "--config", path.join(build, "CPackConfig.cmake"), "-B", folder, "-D", "CPACK_DEBIAN_COMPRESSION_TYPE=gzip");
  const file = path.join(folder, `ordomart_${version}_${prints("dpkg", "--print-architecture").trim()}.deb`);
  const fields = Object.fromEntries([...prints("dpkg-deb", "--field", file).matchAll(/^(\S+): (.*)$/gm)].map((found) => found.slice(1)));
  assert.equal(fields.Version, version);
  for (const name of ["libc6", "libsqlite3-0", "libsimdjson", "libssl3", "systemd-sysusers"]) assert.ok(fields.Depends.includes(name), fields.Depends);
  assert.ok(!fields.Depends.includes("node"), "the server goes without");
  assert.match(fields.Recommends, /nodejs \(>= 18\)/);

  const control = path.join(folder, "control"), files = path.join(folder, "files");
  prints("dpkg-deb", "--control", file, control);
  prints("dpkg-deb", "--extract", file, files);
  assert.equal(await readFile(path.join(control, "conffiles"), "utf8"), "/etc/default/ordomart\n");
  for (const name of ["postinst", "prerm", "postrm"]) {
    assert.equal((await stat(path.join(control, name))).mode & 0o777, 0o755);
    prints("sh", "-n", path.join(control, name));
  }
  assert.deepEqual(prints("dpkg-deb", "--contents", file).split("\n").filter((line) => line && !line.includes(" root/root ")), []);
  await isclean(files);

  assert.equal(prints(path.join(files, "usr/bin/ordomart-server"), "--version"), `ordomart-server ${version}\n`);
  assert.match(prints(path.join(files, "usr/bin/ordomart-gateway"), "--help"), /--door-port/);
  for (const name of ["ordomart.service", "ordomart-gateway.service"]) {
    const unit = await readFile(path.join(files, "usr/lib/systemd/system", name), "utf8");
    for (const [, place] of unit.matchAll(/^(?:ExecStart|EnvironmentFile)=-?(\S+)/gm)) await stat(path.join(files, place));
    assert.ok(!unit.includes("@S"), unit);
  }
  for (const place of ["lib/sysusers.d/ordomart.conf", "share/man/man1/ordomart-server.1.gz", "share/doc/ordomart/copyright",
                       "share/doc/ordomart/game-1.19.50.LICENSE"]) await stat(path.join(files, "usr", place));
});
