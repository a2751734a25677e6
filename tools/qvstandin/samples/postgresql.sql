-- What DESIGNDB.sql takes for granted and PostgreSQL does not have, and the procedures that it keeps as text for
-- SQLite. For a database of its own:
--   psql -d DATABASE -f postgresql.sql -f DESIGNDB.sql

CREATE DOMAIN tinyint AS smallint CHECK (VALUE BETWEEN 0 AND 255);
CREATE DOMAIN datetime AS timestamp(0);
CREATE DOMAIN double AS double precision;
CREATE DOMAIN blob AS bytea;

CREATE FUNCTION zeroblob(length integer) RETURNS bytea IMMUTABLE LANGUAGE sql AS
  $$ SELECT decode(repeat('00', length), 'hex') $$;

CREATE FUNCTION date(day text, step text) RETURNS date IMMUTABLE LANGUAGE sql AS
  $$ SELECT (day::date + step::interval)::date $$;

CREATE FUNCTION datetime(start timestamp, VARIADIC steps text[]) RETURNS timestamp IMMUTABLE LANGUAGE sql AS
  $$ SELECT start + sum(step::interval) FROM unnest(steps) step $$;

-- Their tables come later, so the bodies are not to be looked at yet.
SET check_function_bodies = off;

CREATE FUNCTION documents_of_project(project_code text)
  RETURNS TABLE (id integer, number varchar, title varchar, author varchar, created timestamp) STABLE LANGUAGE sql AS
$$
  SELECT d.id, d.number, d.title, p.name, d.created FROM documents d JOIN people p ON p.id = d.author_id
  WHERE d.project_id = (SELECT q.id FROM projects q WHERE q.code = project_code) ORDER BY d.id
$$;

CREATE FUNCTION parts_heavier_than(heavier_than double precision, row_limit integer)
  RETURNS TABLE (id integer, code char(10), name varchar, weight double precision) STABLE LANGUAGE sql AS
$$
  SELECT p.id, p.code, p.name, p.weight FROM parts p WHERE p.weight > heavier_than ORDER BY p.weight DESC LIMIT row_limit
$$;

CREATE FUNCTION rename_project(project_code text, new_name text)
  RETURNS TABLE (id integer, code char(8), name varchar) LANGUAGE sql AS
$$
  UPDATE projects p SET name = new_name WHERE p.code = project_code RETURNING p.id, p.code, p.name
$$;
