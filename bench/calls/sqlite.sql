-- A procedure, as the stand-in server keeps it for SQLite.

CREATE TABLE StoredProcedures (name VARCHAR(64) PRIMARY KEY, sql TEXT NOT NULL);
INSERT INTO StoredProcedures VALUES
  ('two_parts', 'SELECT id, number, title, revision, weight, changed FROM parts WHERE id IN (?1, ?2)');
