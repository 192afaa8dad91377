' The component driven by ProgID from VBScript, as a host script drives it,
' on the demo database behind the tests' ADO (registered as ADODB.* in the
' test prefix). Argument: the connection string of that database. Prints
' one line per failed check, then "N passed, M failed".
Option Explicit
Dim passed, failed, cs, conn, p, f, rvk, rr, rs, a, b, n, sql, host
passed = 0
failed = 0
cs = WScript.Arguments(0)

' A check of value and type: an Integer is not a Long, "1" is not 1.
Sub Check(name, actual, expected)
  If VarType(actual) = VarType(expected) Then
    If actual = expected Then
      passed = passed + 1
      Exit Sub
    End If
  End If
  failed = failed + 1
  WScript.Echo "FAIL " & name & ": [" & actual & "] (" & TypeName(actual) & "), expected [" & _
    expected & "] (" & TypeName(expected) & ")"
End Sub

Sub Has(name, text, piece)
  Check name & " holds " & piece, InStr(text, piece) > 0, True
End Sub

Sub StartsWith(name, text, piece)
  Check name, Left(text, Len(piece)), piece
End Sub

Sub EndsWith(name, text, piece)
  Check name, Right(text, Len(piece)), piece
End Sub

' The boxes an object recorded since the last call: "style|title|text;" each,
' with the line break of a text as "\n".
Function Boxes(o)
  Dim list, i
  list = o.ZarvikBoxes
  Boxes = ""
  If IsEmpty(list) Then Exit Function
  For i = 0 To UBound(list, 1)
    Boxes = Boxes & list(i, 2) & "|" & list(i, 1) & "|" & Replace(list(i, 0), vbCrLf, "\n") & ";"
  Next
End Function

Function Rows(statement)
  Dim r
  Set r = conn.Execute(statement)
  Rows = 0
  Do While Not r.EOF
    Rows = Rows + 1
    r.MoveNext
  Loop
End Function

Function NewParser(user)
  Set NewParser = CreateObject("ZARVIK.CLSFW_PARSER")
  NewParser.ZarvikBoxes = True
  NewParser.CodiceGruppo = "VEN"
  NewParser.CodiceUtente = user
  NewParser.DittaCorrente = 1
End Function

' The host's application object, as the host's own classes (Wine's
' VBScript takes one member per Public statement).
Class Company
  Public CodDitta
End Class
Class AppUser
  Public idutente
  Public codice
  Public Gruppo
End Class
Class GlobalObjects
  Public Gcls_DittaCorrente
  Public Gcls_UtenteCorrente
End Class
Class HostApplication
  Public ClsGlobal
  Public Connection
End Class

Set conn = CreateObject("ADODB.Connection")
conn.ConnectionString = cs
conn.CursorLocation = 3
conn.Open

' A connection opened from the connection string, in the frame's order.
Set p = NewParser("ROSSI")
p.ConnectionStringADO = cs
Check "DittaBloccata(2)", p.DittaBloccata(2), True
Check "DittaBloccata(1)", p.DittaBloccata(1), False
StartsWith "own connection", p.ConnectionADO.Calls, "CommandTimeout=100|" & _
  "ConnectionString=" & cs & "|ConnectionTimeout=100|IsolationLevel=4096|CursorLocation=3|" & _
  "Open(,,,-1)|Execute(SELECT FW07_ID"

' The rewriter on a joined statement: the host runs the text it gets back.
sql = "SELECT DO11_NUMREG_CO99, CG44_RAGSOC FROM DO11_DOCTESTATA INNER JOIN CG44_CLIFOR ON " & _
  "CG44_DITTA_CG18 = DO11_DITTACF_CG44 AND CG44_TIPOCF = DO11_TIPOCF_CG44 AND " & _
  "CG44_CLIFOR = DO11_CLIFOR_CG44 WHERE DO11_DITTA_CG18 = 1 ORDER BY DO11_NUMREG_CO99"
a = p.ElaboraStrSQL(sql)
Has "ElaboraStrSQL", a, " WHERE (  DO11_DITTA_CG18 = 1 )  AND "
Has "ElaboraStrSQL", a, "VFW32_LISTACFREVOCATI"
EndsWith "ElaboraStrSQL ends", a, " ORDER BY DO11_NUMREG_CO99"
Check "rewritten statement hides rows", Rows(a) > 0 And Rows(a) < Rows(sql), True

' Conditions, with omitted optional arguments.
Check "SQLConditionCliFor", p.SQLConditionCliFor("CG44", True), " AND  NOT EXISTS  (SELECT " & _
  "RVKCLIFOR   FROM VFW32_LISTACFREVOCATI   WHERE RVKDITTA = CG44_DITTA_CG18     AND " & _
  "RVKTIPOCF = CG44_TIPOCF     AND RVKCLIFOR = CG44_CLIFOR     AND RVKUTENTE = 5  )  "
Check "SQLConditionDepositi", p.SQLConditionDepositi("MG66_CODDEP", True), _
  " AND  (MG66_CODDEP NOT IN ('A1' , 'B2' ) OR MG66_CODDEP IS NULL )"

' Values cross the boundary and come back unchanged (Wine's VBScript has no
' ChrW: the unit tests of the text conversion cover the rest of Unicode).
b = "perch" & Chr(233)
For Each a In Array(DateSerial(2024, 3, 5) + TimeSerial(10, 30, 0), Null, Empty, b, 2.5, _
    CLng(40000), CInt(7), True)
  p.DittaAgente = a
  Check "Variant " & TypeName(a), VarType(p.DittaAgente) & " " & p.DittaAgente, VarType(a) & " " & a
Next

' A rights record (VT_RECORD, which VBScript cannot open: the tests' reader
' shows its fields), the article states as an array and as a recordset.
Set rr = CreateObject("ZarvikTests.Record")
Check "record type", VarType(p.InitRevokeFamiglia("MEC")), 36
Check "InitRevokeFamiglia", rr.Fields(p.InitRevokeFamiglia("MEC")), _
  "rvkExists=True CanDelete=True CanUpdate=False CanInsert=True"
a = p.StatiArticoloMagaArray()
Check "array", IsArray(a), True
Check "array bounds", LBound(a, 1) & " " & UBound(a, 1) & " " & LBound(a, 2) & " " & UBound(a, 2), _
  "0 1 0 3"
Check "array items", a(0, 3) & " " & a(1, 3), "4 Nuovo"
Set rs = p.CliForRevocati()
Check "CliForRevocati fields", rs.Fields(2).Name & " " & rs("CG44_RAGSOC"), "CG44_CLIFOR Beta Market"
Check "CliForRevocati rows", rs.RecordCount, CLng(8)

' Stored procedure through ADODB.Command, results by reference.
a = 7
b = 7
Check "ContoPDCBloccato", p.ContoPDCBloccato(10, "1002", a, b), False
Check "by reference", a & " " & b, "1 0"
Check "no box", Boxes(p), ""

' Automation errors.
On Error Resume Next
p.Unknown 1
Check "unknown member", Err.Number, CLng(438)
Err.Clear
p.DittaBloccata 1, 2
Check "too many arguments", Err.Number, CLng(450)
Err.Clear
p.SQLConditionCliFor , True
Check "missing argument", Err.Number, CLng(449)
Err.Clear
p.IdUser = "abc"
Check "type mismatch", Err.Number, CLng(13)
Err.Clear
p.IdUser = 1e12
Check "overflow", Err.Number, CLng(6)
On Error GoTo 0

' The boxes of failing calls: a connection that cannot open, an obsolete method.
Set p = NewParser("ROSSI")
p.ConnectionStringADO = "Driver={No Such Driver};Database=x"
Check "DittaBloccata without database", p.DittaBloccata(2), False
Has "boxes", Boxes(p), "\nin ZARVIK: CLSFW_PARSER - OpenConnection;0||3709 - The connection " & _
  "cannot be used to perform this operation. It is either closed or invalid in this context.\n" & _
  "in ZARVIK: CLSFW_PARSER - DittaBloccata;"
Check "CliForBloccato", p.CliForBloccato("X"), False
Check "obsolete box", Boxes(p), _
  "48|Sviluppo|Metodo 'CliForBloccato' obsoleto, utilizzare 'CliForBloccato_New';"

' A connection handed in is used and left open; a closed one is not opened.
Set p = NewParser("ROSSI")
Set p.ConnectionADO = conn
Check "handed-in connection", p.ConnectionADO Is conn, True
Check "DittaBloccata on it", p.DittaBloccata(2), True
Set p = Nothing
Check "left open", conn.State, CLng(1)
Set p = NewParser("ROSSI")
Set a = CreateObject("ADODB.Connection")
Set p.ConnectionADO = a
Check "closed connection", p.ElaboraStrSQL(sql), sql
Check "closed connection boxes", Boxes(p), ""

' The host's application object: a script object with ClsGlobal members.
Set host = New HostApplication
Set host.ClsGlobal = New GlobalObjects
Set host.ClsGlobal.Gcls_DittaCorrente = New Company
host.ClsGlobal.Gcls_DittaCorrente.CodDitta = 1
Set host.ClsGlobal.Gcls_UtenteCorrente = New AppUser
host.ClsGlobal.Gcls_UtenteCorrente.idutente = 5
host.ClsGlobal.Gcls_UtenteCorrente.codice = "ROSSI"
host.ClsGlobal.Gcls_UtenteCorrente.Gruppo = "VEN"
Set host.Connection = conn
Set p = CreateObject("ZARVIK.CLSFW_PARSER")
p.ZarvikBoxes = True
Set p.ActiveInterface = host
Check "ActiveInterface", p.ActiveInterface Is host, True
Check "company from host", p.DittaCorrente, 1
Check "user from host", p.CodiceUtente & " " & p.CodiceGruppo, "ROSSI VEN"
Check "connection from host", p.ConnectionADO Is conn, True
Check "DittaBloccata for host user", p.DittaBloccata(2), True
Check "host boxes", Boxes(p), ""
Set p = NewParser("ROSSI")
Set p.ActiveInterface = New Company
Check "host without ClsGlobal", p.CodiceUtente & " " & (p.ConnectionADO Is Nothing), "ROSSI True"

' The query filter's SQL and report forms, with omitted optional arguments.
Set f = CreateObject("ZARVIK.CLSFW_FILTROQUERY")
f.ZarvikBoxes = True
f.CodiceGruppo = "VEN"
f.CodiceUtente = "ROSSI"
f.DittaCorrente = 1
Set f.ConnectionADO = conn
f.FiltroCondizione "Cliente", "CG44_CLIFOR", , 2
Check "CondRevoke", f.CondRevoke, "CG44_CLIFOR NOT IN (5,6,8,9,11)"
Check "CondRevokeCrystal", f.CondRevokeCrystal, " (NOT (CG44_CLIFOR IN [5,6,8,9,11]))"
f.FiltroCondizione "Cliente", "CG44_CLIFOR"
Check "filter without kind", f.CondRevoke, ""
Check "filter boxes", Boxes(f), ""

' Lock-out: the third failure of the day locks; the log has a row for each.
n = Rows("SELECT * FROM FW33_RVKUSER")
Set rvk = CreateObject("ZARVIK.CLSFW_RVKUSERS")
rvk.ZarvikBoxes = True
rvk.ConnectionStringADO = cs
rvk.MaxNumTry = 3
For b = 1 To 3
  a = 1
  rvk.LoginRvk a, "PC-TEST", , "lbruno"
Next
Check "IsRevoked after three failures", rvk.IsRevoked, CLng(1)
a = 1
rvk.LoginRvk a, "PC-TEST"
rvk.LoginRvk a, "PC-TEST", "G", "lbruno"
Check "outcome of a locked user", a, 2
Check "log rows", Rows("SELECT * FROM FW33_RVKUSER") - n, 4
Check "lock-out boxes", Boxes(rvk), ""

WScript.Echo passed & " passed, " & failed & " failed"
