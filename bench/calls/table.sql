-- What is measured with, in words that SQLite and PostgreSQL both know: made and filled by bench/calls/servers for each
-- name that stands for {table}.

CREATE TABLE {table} (
  id INTEGER PRIMARY KEY,
  number VARCHAR(24) NOT NULL,
  title VARCHAR(120) NOT NULL,
  revision SMALLINT NOT NULL,
  weight FLOAT NOT NULL,
  changed TIMESTAMP NOT NULL,
  owner_id INTEGER NOT NULL
);
