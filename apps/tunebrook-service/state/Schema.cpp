#include "tunebrook-service/state/Schema.h"

#include "tunebrook-service/core/Database.h"

namespace tb::service {

namespace {

const char* const kSchema = R"sql(
CREATE TABLE IF NOT EXISTS meta(key TEXT PRIMARY KEY, value TEXT NOT NULL);
CREATE TABLE IF NOT EXISTS nonces(key TEXT PRIMARY KEY, timestamp INTEGER NOT NULL);

CREATE TABLE IF NOT EXISTS accounts(
  id INTEGER PRIMARY KEY,
  slug TEXT NOT NULL UNIQUE,
  name TEXT NOT NULL,
  verified TEXT NOT NULL DEFAULT '',
  genre TEXT NOT NULL DEFAULT '',
  bio TEXT NOT NULL DEFAULT '',
  hometown TEXT NOT NULL DEFAULT '',
  label TEXT NOT NULL DEFAULT '',
  website TEXT NOT NULL DEFAULT '',
  twitter TEXT NOT NULL DEFAULT '',
  facebook TEXT NOT NULL DEFAULT '',
  instagram TEXT NOT NULL DEFAULT '',
  youtube TEXT NOT NULL DEFAULT '',
  image TEXT NOT NULL DEFAULT '',
  banner TEXT NOT NULL DEFAULT '',
  created REAL NOT NULL,
  uploader INTEGER NOT NULL DEFAULT 0,
  email TEXT UNIQUE,
  password TEXT,
  facebook_id TEXT UNIQUE,
  google_id TEXT UNIQUE,
  twitter_id TEXT UNIQUE,
  base_followers INTEGER NOT NULL DEFAULT 0,
  feed_seen REAL NOT NULL DEFAULT 0);

CREATE TABLE IF NOT EXISTS music(
  id INTEGER PRIMARY KEY,
  type TEXT NOT NULL CHECK(type IN ('song', 'album')),
  slug TEXT NOT NULL,
  uploader_id INTEGER NOT NULL REFERENCES accounts(id),
  title TEXT NOT NULL,
  artist TEXT NOT NULL,
  featuring TEXT NOT NULL DEFAULT '',
  producer TEXT NOT NULL DEFAULT '',
  genre TEXT NOT NULL,
  description TEXT NOT NULL DEFAULT '',
  released REAL NOT NULL,
  duration INTEGER NOT NULL DEFAULT 0,
  status TEXT NOT NULL DEFAULT 'active',
  geo_restricted INTEGER NOT NULL DEFAULT 0,
  stream_only INTEGER NOT NULL DEFAULT 0,
  video_ad INTEGER NOT NULL DEFAULT 0,
  album_id INTEGER NOT NULL DEFAULT 0,
  track_number INTEGER NOT NULL DEFAULT 0,
  audio TEXT NOT NULL DEFAULT '',
  image TEXT NOT NULL DEFAULT '',
  plays_daily INTEGER NOT NULL DEFAULT 0,
  plays_weekly INTEGER NOT NULL DEFAULT 0,
  plays_monthly INTEGER NOT NULL DEFAULT 0,
  plays_yearly INTEGER NOT NULL DEFAULT 0,
  plays_total INTEGER NOT NULL DEFAULT 0,
  favorites INTEGER NOT NULL DEFAULT 0,
  reposts INTEGER NOT NULL DEFAULT 0,
  playlisted INTEGER NOT NULL DEFAULT 0,
  buy_link TEXT NOT NULL DEFAULT '',
  UNIQUE(uploader_id, type, slug));
CREATE INDEX IF NOT EXISTS music_album ON music(album_id);
CREATE INDEX IF NOT EXISTS music_uploader ON music(uploader_id);

CREATE TABLE IF NOT EXISTS playlists(
  id INTEGER PRIMARY KEY,
  slug TEXT NOT NULL,
  owner_id INTEGER NOT NULL REFERENCES accounts(id),
  title TEXT NOT NULL,
  genre TEXT NOT NULL DEFAULT '',
  description TEXT NOT NULL DEFAULT '',
  private INTEGER NOT NULL DEFAULT 0,
  created REAL NOT NULL,
  updated REAL NOT NULL,
  image TEXT NOT NULL DEFAULT '',
  banner TEXT NOT NULL DEFAULT '',
  plays INTEGER NOT NULL DEFAULT 0,
  favorites INTEGER NOT NULL DEFAULT 0,
  UNIQUE(owner_id, slug));
CREATE TABLE IF NOT EXISTS playlist_tracks(
  playlist_id INTEGER NOT NULL REFERENCES playlists(id),
  position INTEGER NOT NULL,
  music_id INTEGER NOT NULL REFERENCES music(id),
  PRIMARY KEY(playlist_id, position));
CREATE TABLE IF NOT EXISTS tags(tag TEXT PRIMARY KEY, position INTEGER NOT NULL);
CREATE TABLE IF NOT EXISTS playlist_tags(
  playlist_id INTEGER NOT NULL REFERENCES playlists(id),
  tag TEXT NOT NULL,
  PRIMARY KEY(playlist_id, tag));
CREATE TABLE IF NOT EXISTS featured(
  position INTEGER PRIMARY KEY,
  label TEXT NOT NULL,
  kind TEXT NOT NULL,
  ref_id INTEGER NOT NULL);
CREATE TABLE IF NOT EXISTS media(
  name TEXT PRIMARY KEY,
  kind TEXT NOT NULL CHECK(kind IN ('audio', 'image')),
  duration INTEGER NOT NULL DEFAULT 0);

CREATE TABLE IF NOT EXISTS tokens(
  token TEXT PRIMARY KEY,
  secret TEXT NOT NULL,
  account_id INTEGER NOT NULL REFERENCES accounts(id),
  created REAL NOT NULL,
  expires REAL NOT NULL);
CREATE TABLE IF NOT EXISTS favorites(
  account_id INTEGER NOT NULL,
  kind TEXT NOT NULL CHECK(kind IN ('music', 'playlist')),
  item_id INTEGER NOT NULL,
  created REAL NOT NULL,
  PRIMARY KEY(account_id, kind, item_id));
CREATE TABLE IF NOT EXISTS reposts(
  account_id INTEGER NOT NULL,
  music_id INTEGER NOT NULL,
  created REAL NOT NULL,
  PRIMARY KEY(account_id, music_id));
CREATE TABLE IF NOT EXISTS follows(
  account_id INTEGER NOT NULL,
  artist_id INTEGER NOT NULL,
  created REAL NOT NULL,
  PRIMARY KEY(account_id, artist_id));
CREATE TABLE IF NOT EXISTS pinned(
  account_id INTEGER NOT NULL,
  kind TEXT NOT NULL,
  item_id INTEGER NOT NULL,
  position INTEGER NOT NULL,
  PRIMARY KEY(account_id, kind, item_id));
CREATE TABLE IF NOT EXISTS downloads(
  account_id INTEGER NOT NULL,
  music_id INTEGER NOT NULL,
  created REAL NOT NULL,
  PRIMARY KEY(account_id, music_id));
CREATE TABLE IF NOT EXISTS play_sessions(
  session TEXT NOT NULL,
  music_id INTEGER NOT NULL,
  created REAL NOT NULL,
  PRIMARY KEY(session, music_id));
CREATE TABLE IF NOT EXISTS notifications(
  id INTEGER PRIMARY KEY,
  account_id INTEGER NOT NULL,
  verb TEXT NOT NULL,
  actor_id INTEGER NOT NULL,
  object_kind TEXT NOT NULL DEFAULT '',
  object_id INTEGER NOT NULL DEFAULT 0,
  target_id INTEGER NOT NULL DEFAULT 0,
  comment TEXT NOT NULL DEFAULT '',
  parent TEXT NOT NULL DEFAULT '',
  created REAL NOT NULL,
  seen INTEGER NOT NULL DEFAULT 0);
CREATE INDEX IF NOT EXISTS notifications_account ON notifications(account_id, created);
CREATE TABLE IF NOT EXISTS events(
  id INTEGER PRIMARY KEY,
  ts REAL NOT NULL,
  kind TEXT NOT NULL,
  account_id INTEGER,
  data TEXT NOT NULL);
)sql";

}  // namespace

bool Schema::create(Database& db, std::string& error) {
    return db.exec(kSchema, &error);
}

}  // namespace tb::service
