-- What is measured with, in words that SQLite and PostgreSQL both know. bench/calls/servers fills the tables.

CREATE TABLE parts (
  id INTEGER PRIMARY KEY,
  number VARCHAR(24) NOT NULL,
  title VARCHAR(120) NOT NULL,
  revision SMALLINT NOT NULL,
  weight FLOAT NOT NULL,
  changed TIMESTAMP NOT NULL,
  owner_id INTEGER NOT NULL
);

CREATE TABLE many_parts (
  id INTEGER PRIMARY KEY,
  number VARCHAR(24) NOT NULL,
  title VARCHAR(120) NOT NULL,
  revision SMALLINT NOT NULL,
  weight FLOAT NOT NULL,
  changed TIMESTAMP NOT NULL,
  owner_id INTEGER NOT NULL
);
