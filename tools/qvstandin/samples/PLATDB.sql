-- The platform's own tables: the settings row, departments and the people in them.

CREATE TABLE Mxd_sys_BaseInfo (
  CI_ServerSetCache INTEGER NOT NULL,
  CI_ServerCompress INTEGER NOT NULL,
  CI_DefaultSelectCompress INTEGER NOT NULL,
  CI_DefaultDisplayCompress INTEGER NOT NULL,
  CI_DefaultDisplayDomain INTEGER NOT NULL
);
INSERT INTO Mxd_sys_BaseInfo VALUES (1, 0, 0, 0, 0);

CREATE TABLE departments (
  id INTEGER PRIMARY KEY,
  code CHAR(4) NOT NULL,
  name VARCHAR(40) NOT NULL,
  parent_id INTEGER
);
INSERT INTO departments VALUES
  (1, 'HQ00', '总工程师办公室', NULL),
  (2, 'AR10', '建筑设计部', 1),
  (3, 'ST20', '结构设计部', 1),
  (4, 'ME30', '机电设计部', 1),
  (5, 'IT40', '信息中心', 1),
  (6, 'AR11', '景观设计组', 2);

CREATE TABLE people (
  id INTEGER PRIMARY KEY,
  login VARCHAR(20) NOT NULL UNIQUE,
  name VARCHAR(40) NOT NULL,
  department_id INTEGER NOT NULL REFERENCES departments (id),
  joined DATE NOT NULL,
  active BOOLEAN NOT NULL
);
WITH RECURSIVE n (i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 120)
INSERT INTO people
SELECT i,
       printf('user%03d', i),
       substr('王李张刘陈杨赵黄周吴徐孙', 1 + i * 7 % 12, 1) ||
       substr('伟芳敏静丽强磊军洋勇杰涛明超', 1 + i * 5 % 14, 1) ||
       CASE i % 3 WHEN 0 THEN '' ELSE substr('华文国建春海云林', 1 + i * 3 % 8, 1) END,
       1 + i % 6,
       date('2009-03-01', '+' || (i * 37) || ' days'),
       i % 11 <> 0
FROM n;

CREATE TABLE StoredProcedures (name VARCHAR(64) PRIMARY KEY, sql TEXT NOT NULL);
INSERT INTO StoredProcedures VALUES
  ('people_of_department',
   'SELECT p.id, p.name, p.login, d.name AS department FROM people p
    JOIN departments d ON d.id = p.department_id WHERE d.code = ?1 ORDER BY p.id');
