-- Routines of the demo database.
--
-- The embedded engine keeps routines as rows of ZARVIK_ROUTINES:
--   KIND    FUNCTION (scalar: the value is the first column of the first row
--           of BODY) or PROCEDURE (the output parameters are the columns of
--           the single row of BODY with the same names);
--   PARAMS  the parameters in call order, with their SQL type and, for
--           procedures, IN or OUT;
--   BODY    one SQLite SELECT; parameters appear as :Name (without the @).

CREATE TABLE ZARVIK_ROUTINES (
  NAME TEXT PRIMARY KEY,
  KIND TEXT NOT NULL CHECK (KIND IN ('FUNCTION', 'PROCEDURE')),
  PARAMS TEXT NOT NULL,
  BODY TEXT NOT NULL
);

-- FNFW_TRASFREVOCATI(company, user id, origin warehouse, destination
-- warehouse): 1 when the transfer is revoked for the user, else 0. A transfer
-- is revoked when either warehouse is revoked for the user in that company
-- (a kind-6 revocation); a user who may not see one end may not move goods
-- between the two. Codes are compared without trailing blanks.
INSERT INTO ZARVIK_ROUTINES (NAME, KIND, PARAMS, BODY) VALUES (
  'FNFW_TRASFREVOCATI', 'FUNCTION',
  '@Ditta INT, @IdUtente INT, @DepOrig VARCHAR, @DepDest VARCHAR',
  'SELECT CASE WHEN EXISTS (SELECT 1 FROM VFW31_RVKPARAMETRI
                             WHERE FW31_ID_FW07 = :IdUtente
                               AND FW31_INDTIPO = 6
                               AND FW31_FLGABILITATO = 0
                               AND FW31_DITTARAGG = :Ditta
                               AND (RTRIM(FW31_CODTIPO) = RTRIM(:DepOrig)
                                    OR RTRIM(FW31_CODTIPO) = RTRIM(:DepDest)))
              THEN 1 ELSE 0 END');

-- KVL_GETDATE(): the current local date and time, YYYY-MM-DD HH:MM:SS.fff.
INSERT INTO ZARVIK_ROUTINES (NAME, KIND, PARAMS, BODY) VALUES (
  'KVL_GETDATE', 'FUNCTION', '',
  'SELECT strftime(''%Y-%m-%d %H:%M:%f'', ''now'', ''localtime'')');

-- SPFW_GetInfoRevokeContoPDC: the rights of the user on one account of the
-- chart of accounts (kind 26; the account group is the scope, the account
-- code the code).
--   canAbilitato  0 when the account is revoked (FW31_FLGABILITATO = 0),
--                 else 1: the user may post to it.
--   canVisualizza 0 when the account is revoked or may not be changed
--                 (FW31_FLGMODIFICA = 0), else 1. These are the accounts the
--                 account conditions leave out when asked to exclude the
--                 ones that cannot be shown.
-- An account without a kind-26 row answers 1 and 1.
INSERT INTO ZARVIK_ROUTINES (NAME, KIND, PARAMS, BODY) VALUES (
  'SPFW_GetInfoRevokeContoPDC', 'PROCEDURE',
  '@IdUtente INT IN, @GruppoPDC SMALLINT IN, @ContoPDC VARCHAR IN, @canAbilitato INT OUT, @canVisualizza INT OUT',
  'SELECT CASE WHEN EXISTS (SELECT 1 FROM VFW31_RVKPARAMETRI
                             WHERE FW31_ID_FW07 = :IdUtente
                               AND FW31_INDTIPO = 26
                               AND FW31_DITTARAGG = :GruppoPDC
                               AND RTRIM(FW31_CODTIPO) = RTRIM(:ContoPDC)
                               AND FW31_FLGABILITATO = 0)
              THEN 0 ELSE 1 END AS canAbilitato,
         CASE WHEN EXISTS (SELECT 1 FROM VFW31_RVKPARAMETRI
                             WHERE FW31_ID_FW07 = :IdUtente
                               AND FW31_INDTIPO = 26
                               AND FW31_DITTARAGG = :GruppoPDC
                               AND RTRIM(FW31_CODTIPO) = RTRIM(:ContoPDC)
                               AND (FW31_FLGABILITATO = 0 OR FW31_FLGMODIFICA = 0))
              THEN 0 ELSE 1 END AS canVisualizza');
