-- The directory: departments, groups, users, and who is in which group. Names are the same in either case.

CREATE TABLE departments (
  id INTEGER PRIMARY KEY,
  number INTEGER NOT NULL UNIQUE,
  display_name TEXT NOT NULL
);
INSERT INTO departments VALUES
  (1, 10, '建筑设计部'),
  (2, 20, '结构设计部'),
  (3, 30, '机电设计部');

-- What the kind means is the clients' affair. A display name fits the record that it travels in.
CREATE TABLE groups (
  id INTEGER PRIMARY KEY,
  name TEXT NOT NULL UNIQUE COLLATE NOCASE CHECK (length(CAST(name AS BLOB)) BETWEEN 1 AND 123),
  display_name TEXT NOT NULL CHECK (length(CAST(display_name AS BLOB)) <= 123),
  kind INTEGER NOT NULL,
  department_id INTEGER REFERENCES departments (id)
);
INSERT INTO groups VALUES
  (1, 'administrators', '系统管理员', 0, NULL),
  (2, 'designers', '设计人员', 0, NULL),
  (3, 'structural', '结构组', 1, 2),
  (4, '审图组', '施工图审查组', 1, 1);

CREATE TABLE users (
  id INTEGER PRIMARY KEY,
  name TEXT NOT NULL UNIQUE COLLATE NOCASE CHECK (length(CAST(name AS BLOB)) BETWEEN 1 AND 123),
  display_name TEXT NOT NULL CHECK (length(CAST(display_name AS BLOB)) <= 123),
  mode INTEGER NOT NULL
);
INSERT INTO users VALUES
  (1, 'admin', '管理员', 0),
  (2, 'chen.jing', '陈静', 0),
  (3, 'li.na', '李娜', 0),
  (4, 'wang.wei', '王伟', 0),
  (5, 'zhang.lei', '张磊', 1),
  (6, 'zhao.min', '赵敏', 0);

CREATE TABLE members (
  group_id INTEGER NOT NULL REFERENCES groups (id),
  user_id INTEGER NOT NULL REFERENCES users (id),
  PRIMARY KEY (group_id, user_id)
) WITHOUT ROWID;
INSERT INTO members VALUES (1, 1), (2, 2), (2, 3), (2, 4), (2, 5), (3, 4), (3, 5), (4, 2);
