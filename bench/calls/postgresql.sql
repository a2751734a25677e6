-- The same procedure in PostgreSQL.

CREATE FUNCTION two_parts(one integer, other integer)
  RETURNS TABLE (id integer, number varchar, title varchar, revision smallint, weight float, changed timestamp)
  STABLE LANGUAGE sql AS
$$
  SELECT p.id, p.number, p.title, p.revision, p.weight, p.changed FROM parts p WHERE p.id IN (one, other)
$$;
