// What a client is sent when its game starts: a world of air in which a player hangs still, the items and the commands
// that the server told. Values are named as the published schema of the game's version names them.
const entity = 1n;  // of the client itself; no packet of the server names another
const radius = 4;  // chunks

const uuid = "00000000-0000-0000-0000-000000000000";
const emptycompound = { type: "compound", name: "", value: {} };

const startgame = {
  entity_id: entity, runtime_entity_id: entity, player_gamemode: "survival", rotation: { x: 0, z: 0 },
  seed: 0n, biome_type: 0, biome_name: "plains", dimension: "overworld", generator: 1, world_gamemode: "survival", difficulty: 0,
  achievements_disabled: true, editor_world: false, day_cycle_stop_time: 6000, edu_offer: 0, edu_features_enabled: false,
  edu_product_uuid: "", rain_level: 0, lightning_level: 0, has_confirmed_platform_locked_content: false, is_multiplayer: true,
  broadcast_to_lan: true, xbox_live_broadcast_mode: 0, platform_broadcast_mode: 0, enable_commands: true, is_texturepacks_required: false,
  gamerules: [
    { name: "dodaylightcycle", editable: false, type: "bool", value: false },
    { name: "doimmediaterespawn", editable: false, type: "bool", value: true },
    { name: "showcoordinates", editable: false, type: "bool", value: false },
  ],
  experiments: [], experiments_previously_used: false, bonus_chest: false, map_enabled: false, permission_level: "member",
  server_chunk_tick_range: 4, has_locked_behavior_pack: false, has_locked_resource_pack: false, is_from_locked_world_template: false,
  msa_gamertags_only: false, is_from_world_template: false, is_world_template_option_locked: false, only_spawn_v1_villagers: false,
  persona_disabled: false, custom_skins_disabled: false, limited_world_width: 16, limited_world_length: 16, is_new_nether: true,
  edu_resource_uri: { button_name: "", link_uri: "" }, experimental_gameplay_override: false, chat_restriction_level: "none",
  disable_player_interactions: false, level_id: "", premium_world_template_id: "", is_trial: false, movement_authority: "client",
  rewind_history_size: 0, server_authoritative_block_breaking: false, current_tick: 0n, enchantment_seed: 0, block_properties: [],
  multiplayer_correlation_id: uuid, server_authoritative_inventory: true, engine: "", property_data: emptycompound,
  block_pallette_checksum: 0n, world_template_id: uuid, client_side_generation: false,
};

const eyes = 1.62;  // above the feet
const provisional = { x: 0.5, y: 64, z: 0.5 };

// Without a single block: 24 empty sub-chunks of one biome, the first told and the others like it, and no border blocks.
const air = Buffer.from([0x01, 0x02, ...Array(23).fill(0xff), 0x00]);

function* world(at) {
  const chunk = { x: Math.floor(at.x / 16), z: Math.floor(at.z / 16) };
  const coordinates = { x: Math.floor(at.x), y: Math.floor(at.y), z: Math.floor(at.z) };
  yield ["network_chunk_publisher_update", { coordinates, radius: 16 * radius, saved_chunks: [] }];
  for (let x = -radius; x <= radius; ++x)
    for (let z = -radius; z <= radius; ++z)
      yield ["level_chunk", { x: chunk.x + x, z: chunk.z + z, sub_chunk_count: 0, cache_enabled: false, payload: air }];
}

export const chunkradius = ["chunk_radius_update", { chunk_radius: radius }];

export const packs = ["resource_packs_info", { must_accept: false, has_scripts: false, force_server_packs: false, behaviour_packs: [], texture_packs: [] }];
export const stack = (version) => ["resource_pack_stack", {
  must_accept: false, behavior_packs: [], resource_packs: [], game_version: version, experiments: [], experiments_previously_used: false,
}];

// Where he stands and what he may do is known only when he has been opened, which is when his client is ready.
export function* startpackets(hello) {
  const { x, y, z } = provisional;
  yield ["start_game", {
    ...startgame, player_position: { x, y: y + eyes, z }, spawn_position: { x: 0, y, z: 0 }, game_version: hello.version, world_name: hello.motd,
    itemstates: hello.items.map(([name, runtime_id, component_based]) => ({ name, runtime_id, component_based })),
  }];
}

const attribute = (name, current, max = current, min = 0) => ({ name: `minecraft:${name}`, min, max, current, default: current, modifiers: [] });

export function* readypackets() {
  yield ["update_attributes", {
    runtime_entity_id: entity, tick: 0n,
    attributes: [attribute("health", 20), attribute("player.hunger", 20), attribute("player.saturation", 5, 20), attribute("movement", 0.1, 3.4e38),
                 attribute("player.level", 0, 24791), attribute("player.experience", 0, 1), attribute("absorption", 0, 16)],
  }];
  yield ["update_adventure_settings", { no_pvm: true, no_mvp: true, immutable_world: true, show_name_tags: true, auto_jump: false }];
  yield abilities(0);
  // He cannot move: there is nowhere to go, and below there is nothing.
  yield ["set_entity_data", {
    runtime_entity_id: entity, properties: { ints: [], floats: [] }, tick: 0n,
    metadata: [{ key: "flags", type: "long", value: { no_ai: true, breathing: true, has_collision: true } }],
  }];
  yield ["set_time", { time: 6000 }];
  yield chunkradius;
  yield* world(provisional);
  yield ["play_status", { status: "player_spawn" }];
}

const allowed = ["build", "mine", "doors_and_switches", "open_containers", "attack_players", "attack_mobs", "operator_commands", "teleport",
                 "invulnerable", "flying", "may_fly", "instant_build", "lightning", "fly_speed", "walk_speed", "muted", "world_builder", "no_clip"];
const set = (names) => ({ _value: 0, ...Object.fromEntries(names.map((name) => [name, true])) });

function abilities(permission) {
  const enabled = ["doors_and_switches", "open_containers", "invulnerable", "flying", "may_fly", "fly_speed", "walk_speed"];
  if (permission > 0) enabled.push("operator_commands", "teleport");
  return ["update_abilities", {
    entity_unique_id: entity, permission_level: permission > 0 ? "operator" : "member", command_permission: levels[permission] ?? "normal",
    abilities: [{ type: "base", allowed: set(allowed), enabled: set(enabled), fly_speed: 0.05, walk_speed: 0.1 }],
  }];
}

const levels = ["normal", "operator", "automation", "host", "owner"];

// He is in: where the server has him, and as what.
export function* openedpackets({ position: [x, y, z], gametype, permission }) {
  yield abilities(permission);
  yield ["set_player_game_type", { gamemode: gametype === 1 ? "creative" : "survival" }];
  yield ["move_player", { runtime_id: Number(entity), position: { x, y: y + eyes, z }, pitch: 0, yaw: 0, head_yaw: 0, mode: "reset",
                          on_ground: false, ridden_runtime_id: 0, tick: 0n }];
  yield* world({ x, y, z });
}

// The commands that a player of this permission has, as his keyboard completes them.
export function commandpacket({ commands, enums }, permission) {
  const values = [], places = new Map();
  const place = (value) => {
    if (!places.has(value)) places.set(value, values.push(value) - 1);
    return places.get(value);
  };
  const boolean = { name: "Boolean", values: ["true", "false"] };
  const all = [...enums, boolean];
  const numberof = (name) => {
    const found = all.findIndex((one) => one.name === name);
    if (found < 0) throw new Error(`the enumeration "${name}" of a command is none of the server's`);
    return found;
  };
  const kinds = {
    enum: ({ enum: name }) => [numberof(name), "enum"],
    bool: () => [numberof(boolean.name), "enum"],
    string: () => ["string", "valid"],
    int: () => ["int", "valid"],
  };
  const options = { unused: 0, collapse_enum: 0, has_semantic_constraint: 0, as_chained_command: 0, unknown2: 0 };
  const parameter = (one) => {
    const [value_type, enum_type] = (kinds[one.kind] ?? kinds.string)(one);
    return { parameter_name: one.name, value_type, enum_type, optional: one.optional, options };
  };
  const told = {
    suffixes: [], dynamic_enums: [], enum_constraints: [],
    enums: all.map(({ name, values: words }) => ({ name, values: words.map(place) })),
    command_data: commands.filter((one) => one.permission <= permission).map((one) => ({
      name: one.name, description: one.description, flags: 0, permission_level: one.permission, alias: -1,
      overloads: one.overloads.map((parameters) => ({ parameters: parameters.map(parameter) })),
    })),
  };
  return ["available_commands", { values_len: values.length, enum_values: values, ...told }];
}
