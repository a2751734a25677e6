-- A design office's work: projects, their documents with every revision, and the parts that the documents list. Each
-- type of column that a recordset can declare occurs. Runs on SQLite, and on PostgreSQL behind postgresql.sql.

CREATE TABLE people (
  id INTEGER PRIMARY KEY,
  name VARCHAR(40) NOT NULL,
  title VARCHAR(20),
  born DATE,
  active BOOLEAN NOT NULL,
  signature BLOB
);
WITH RECURSIVE n (i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 60)
INSERT INTO people
SELECT i,
       substr('王李张刘陈杨赵黄周吴徐孙', 1 + i * 7 % 12, 1) ||
       substr('伟芳敏静丽强磊军洋勇杰涛明超', 1 + i * 5 % 14, 1),
       CASE i % 4 WHEN 0 THEN '高级工程师' WHEN 1 THEN '工程师' WHEN 2 THEN '助理工程师' END,
       CASE WHEN i % 9 <> 0 THEN date('1962-05-17', '+' || (i * 211) || ' days') END,
       i % 13 <> 0,
       CASE WHEN i % 5 = 0 THEN CAST('signature of ' || i AS BLOB) END
FROM n;

CREATE TABLE projects (
  id INTEGER PRIMARY KEY,
  code CHAR(8) NOT NULL,
  name VARCHAR(80) NOT NULL,
  manager_id INTEGER NOT NULL REFERENCES people (id),
  priority TINYINT NOT NULL,
  started DATE NOT NULL,
  finished DATE,
  budget DOUBLE,
  open BOOLEAN NOT NULL
);
WITH RECURSIVE n (i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 24)
INSERT INTO projects
SELECT i,
       'PRJ-' || substr('' || (10000 + i * 17), 2),
       CASE i % 4 WHEN 0 THEN '滨江' WHEN 1 THEN '城南' WHEN 2 THEN '高新区' ELSE '老城' END ||
       CASE i % 6 WHEN 0 THEN '图书馆' WHEN 1 THEN '地铁站' WHEN 2 THEN '中心医院' WHEN 3 THEN '体育馆'
                  WHEN 4 THEN '水处理厂' ELSE '科技园' END || (1 + i % 3) || '期',
       1 + i * 11 % 60,
       i * 37 % 256,
       date('2017-01-09', '+' || (i * 83) || ' days'),
       CASE WHEN i % 3 = 0 THEN date('2019-06-30', '+' || (i * 83) || ' days') END,
       CASE WHEN i % 8 <> 0 THEN 125000.5 * i + i / 7.0 END,
       i % 3 <> 0
FROM n;

CREATE TABLE documents (
  id INTEGER PRIMARY KEY,
  project_id INTEGER NOT NULL REFERENCES projects (id),
  number VARCHAR(24) NOT NULL,
  title VARCHAR(120) NOT NULL,
  author_id INTEGER NOT NULL REFERENCES people (id),
  created DATETIME NOT NULL,
  revision SMALLINT NOT NULL,
  locked BOOLEAN NOT NULL,
  size_bytes BIGINT,
  remarks TEXT
);
CREATE INDEX documents_by_project ON documents (project_id);
WITH RECURSIVE n (i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 1200)
INSERT INTO documents
SELECT i,
       1 + i * 7 % 24,
       'D' || substr('' || (100000 + i), 2) || '-' || substr('ARSTMEEL', 1 + i % 4 * 2, 2),
       CASE i % 5 WHEN 0 THEN '总平面图' WHEN 1 THEN '结构计算书' WHEN 2 THEN '设备表'
                  WHEN 3 THEN '剖面图' ELSE '节点详图' END || ' <' || (i % 40) || '> "A&B"',
       1 + i * 13 % 60,
       datetime('2018-02-01 08:15:30', '+' || (i * 97) || ' minutes', '+' || (i % 60) || ' seconds'),
       i % 4,
       i % 17 = 0,
       CASE WHEN i % 10 = 0 THEN NULL WHEN i % 40 = 1 THEN 4294967296 + i ELSE 2048 + i * 7919 % 25000000 END,
       CASE i % 6 WHEN 0 THEN NULL WHEN 1 THEN '' WHEN 2 THEN 'it''s checked
第二行'           ELSE '待审核' END
FROM n;

CREATE TABLE revisions (
  document_id INTEGER NOT NULL REFERENCES documents (id),
  revision SMALLINT NOT NULL,
  saved DATETIME NOT NULL,
  author_id INTEGER NOT NULL REFERENCES people (id),
  comment VARCHAR(80),
  scale FLOAT4,
  digest BLOB,
  PRIMARY KEY (document_id, revision)
);
WITH RECURSIVE r (i) AS (SELECT 0 UNION ALL SELECT i + 1 FROM r WHERE i < 3)
INSERT INTO revisions
SELECT d.id,
       r.i,
       datetime(d.created, '+' || (r.i * 9) || ' days'),
       1 + (d.author_id + r.i) % 60,
       CASE r.i WHEN 0 THEN NULL ELSE '第' || r.i || '次修改' END,
       CASE WHEN d.id % 7 <> 0 THEN 1.0 / (50 * (1 + d.id % 4)) END,
       CASE r.i WHEN 0 THEN zeroblob(1 + d.id % 4) WHEN 1 THEN NULL ELSE CAST('''印' || (d.id * 7919) AS BLOB) END
FROM documents d JOIN r ON r.i <= d.revision;

CREATE TABLE parts (
  id INTEGER PRIMARY KEY,
  document_id INTEGER NOT NULL REFERENCES documents (id),
  code CHAR(10) NOT NULL,
  name VARCHAR(60) NOT NULL,
  quantity SMALLINT NOT NULL,
  weight DOUBLE,
  tolerance FLOAT4,
  bought BOOLEAN NOT NULL,
  serial BIGINT NOT NULL
);
CREATE INDEX parts_by_document ON parts (document_id);
WITH RECURSIVE n (i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 3000)
INSERT INTO parts
SELECT i,
       1 + i * 29 % 1200,
       'P-' || substr('' || (100000000 + i * 7919 % 100000000), 2),
       CASE i % 6 WHEN 0 THEN '高强螺栓' WHEN 1 THEN '预埋件' WHEN 2 THEN '工字钢' WHEN 3 THEN '风阀'
                  WHEN 4 THEN '电缆桥架' ELSE '法兰' END || ' M' || (6 + i % 12),
       i * 31 % 500 - 20,
       CASE WHEN i % 12 <> 0 THEN i * 0.731 + 0.02 END,
       CASE WHEN i % 15 <> 0 THEN (i % 50) / 1000.0 END,
       i % 2 = 0,
       i * 3074457345618258 + 1
FROM n;

CREATE TABLE StoredProcedures (name VARCHAR(64) PRIMARY KEY, sql TEXT NOT NULL);
INSERT INTO StoredProcedures VALUES
  ('documents_of_project',
   'SELECT d.id, d.number, d.title, p.name AS author, d.created FROM documents d
    JOIN people p ON p.id = d.author_id
    WHERE d.project_id = (SELECT id FROM projects WHERE code = ?1) ORDER BY d.id'),
  ('parts_heavier_than',
   'SELECT id, code, name, weight FROM parts WHERE weight > ?1 ORDER BY weight DESC LIMIT ?2'),
  ('rename_project',
   'UPDATE projects SET name = ?2 WHERE code = ?1; SELECT id, code, name FROM projects WHERE code = ?1');
