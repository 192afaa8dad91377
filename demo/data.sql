-- Seed data of the demo database.
--
-- Two companies: 1 (the main one) and 2.
-- Users (FW07_ID, code, group):
--   1     ZentAd   SYS  privileged code: revocations never apply
--   5     ROSSI    VEN  ordinary user with revocations of every kind
--   6     BIANCHI  VEN  revocations in company 2 only
--   7     VERDI    AMM  group-based (FW07_FLGGRP = 1), groups AMM and MAG
--   8     NERI     MAG  inactive user (FW07_FLGATTIVO = 0)
--   9     GIALLI   VEN  acts as agent 12 of company 1, nothing revoked
--   10    BRUNO    AMM  login name lbruno, for the login lock-out
--   11    GALLO    MAG  login name cgallo, already locked out
--   40000 ESTERNO  VEN  id above the 16-bit range
-- Everything is in ASCII so that the tour can align its columns.

INSERT INTO CG18_DITTE (CG18_DITTA, CG18_RAGSOC) VALUES
  (1, 'Norvello Demo S.p.A.'),
  (2, 'Norvello Servizi S.r.l.');

INSERT INTO FW06_GRUPPI (FW06_ID, FW06_CODICE, FW06_DESCR) VALUES
  (1, 'AMM', 'Amministrazione'),
  (2, 'VEN', 'Vendite'),
  (3, 'MAG', 'Magazzino'),
  (4, 'SYS', 'Sistema');

INSERT INTO FW07_APPUSER (FW07_ID, FW07_CODICE, FW07_CODICE_FW06, FW07_DESCR, FW07_FLGGRP,
                          FW07_USERNAME, FW07_FLGATTIVO, FW07_FLGREVOKE) VALUES
  (1, 'ZentAd', 'SYS', 'Amministratore di sistema', 0, 'zentad', 1, 0),
  (5, 'ROSSI', 'VEN', 'Mario Rossi', 0, 'mrossi', 1, 0),
  (6, 'BIANCHI', 'VEN', 'Laura Bianchi', 0, 'lbianchi', 1, 0),
  (7, 'VERDI', 'AMM', 'Paolo Verdi', 1, 'pverdi', 1, 0),
  (8, 'NERI', 'MAG', 'Carla Neri', 0, 'cneri', 0, 0),
  (9, 'GIALLI', 'VEN', 'Giorgio Gialli', 0, 'ggialli', 1, 0),
  (10, 'BRUNO', 'AMM', 'Luca Bruno', 0, 'lbruno', 1, 0),
  (11, 'GALLO', 'MAG', 'Chiara Gallo', 0, 'cgallo', 1, 1),
  (40000, 'ESTERNO', 'VEN', 'Consulente esterno', 0, 'esterno', 1, 0);

-- Every user belongs to his own group; VERDI also to MAG.
INSERT INTO FW00_GRPUSRASSOC (FW00_ID_FW07, FW00_ID_FW06) VALUES
  (1, 4), (5, 2), (6, 2), (7, 1), (7, 3), (8, 3), (9, 2), (10, 1), (11, 3), (40000, 2);

------------------------------------------------------------------------------
-- General ledger
------------------------------------------------------------------------------

INSERT INTO CG16_ANAGRAFICA (CG16_CODICE, CG16_RAGSOC, CG16_PARTIVA) VALUES
  (1, 'Alfa Distribuzione S.p.A.', '01234560151'),
  (2, 'Beta Market S.r.l.', '02345670012'),
  (3, 'Gamma Ingrosso S.n.c.', '03456780273'),
  (4, 'Supplier GmbH', 'DE123456789'),
  (5, 'Comune di Firenze', '01307110484');

INSERT INTO CG44_CLIFOR (CG44_DITTA_CG18, CG44_TIPOCF, CG44_CLIFOR, CG44_RAGSOC, CG44_CODANAG_CG16) VALUES
  (1, 0, 1, 'Alfa Distribuzione', 1),
  (1, 0, 2, 'Beta Market', 2),
  (1, 0, 3, 'Gamma Ingrosso', 3),
  (1, 0, 4, 'Delta Negozi', NULL),
  (1, 0, 5, 'Epsilon Napoli', NULL),
  (1, 0, 6, 'Zeta Bari', NULL),
  (1, 0, 7, 'Eta Milano', NULL),
  (1, 0, 8, 'Comune di Firenze', 5),
  (1, 0, 9, 'Iota Verona', NULL),
  (1, 0, 10, 'Kappa Roma', NULL),
  (1, 0, 11, 'Lambda Padova', NULL),
  (1, 0, 12, 'Mu Retail Milano', NULL),
  (1, 0, 13, 'Nu Senza Classi', NULL),
  (1, 0, 40, 'Omega Firenze', NULL),
  (1, 1, 101, 'Fornitore Nord', NULL),
  (1, 1, 102, 'Fornitore Sud', NULL),
  (1, 1, 103, 'Fornitore Singolo', NULL),
  (1, 1, 104, 'Supplier GmbH', 4),
  (1, 1, 105, 'Fornitore Centro', NULL),
  (2, 0, 1, 'Alfa Servizi', 1),
  (2, 0, 2, 'Beta Servizi', 2),
  (2, 0, 3, 'Gamma Servizi', 3),
  (2, 1, 101, 'Fornitore Servizi', NULL);

INSERT INTO CG31_SEDI (CG31_DITTA_CG18, CG31_CODICE, CG31_DESCR) VALUES
  (1, 1, 'Sede Milano'),
  (1, 3, 'Filiale Torino'),
  (1, 7, 'Filiale Roma'),
  (1, 12, 'Filiale Napoli'),
  (2, 1, 'Sede Servizi'),
  (2, 2, 'Ufficio tecnico');

INSERT INTO CS05_ASSEGNAZIONI (CS05_DITTA_CG18, CS05_SEDE_CG31, CS05_RISORSA) VALUES
  (1, 1, 'Reception'), (1, 3, 'Sportello'), (1, 12, 'Sportello'), (2, 1, 'Reception');

INSERT INTO CG33_TABCAU (CG33_CODICE, CG33_DESCR, CG33_INDTIPOREG) VALUES
  ('GIRO', 'Giroconto', 0),
  ('STORNO', 'Storno', 0),
  ('INC', 'Incasso', 0),
  ('PAG', 'Pagamento', 0),
  ('FATVEN', 'Fattura di vendita', 1),
  ('FATACQ', 'Fattura di acquisto', 2),
  ('CORR', 'Corrispettivi', 3),
  ('CORRV', 'Corrispettivi ventilati', 3);

INSERT INTO CG41_TESMOVCONT (CG41_DITTA_CG18, CG41_NUMREG, CG41_DATAREG, CG41_CAUSALE_CG33) VALUES
  (1, 1, '2024-01-10', 'FATVEN'),
  (1, 2, '2024-01-31', 'CORR'),
  (1, 3, '2024-02-05', 'GIRO'),
  (1, 4, '2024-02-10', 'STORNO'),
  (1, 5, '2024-02-20', 'INC'),
  (1, 6, '2024-02-28', 'FATACQ');

-- Accounts: group 10 (assets) 1001 cash, 1002 bank, 1003 receivables;
-- group 20 (income and costs) 2001 sales, 2002 purchases.
INSERT INTO CG42_MOVCONT (CG42_DITTA_CG18, CG42_NUMREG_CG41, CG42_RIGA, CG42_GRUPPOPDC, CG42_CONTOPDC, CG42_IMPORTO) VALUES
  (1, 1, 1, 10, '1003', 1200), (1, 1, 2, 20, '2001', -1200),
  (1, 2, 1, 10, '1001', 500), (1, 2, 2, 20, '2001', -500),
  (1, 3, 1, 10, '1002', 300), (1, 3, 2, 10, '1001', -300),
  (1, 4, 1, 20, '2001', 120), (1, 4, 2, 10, '1003', -120),
  (1, 5, 1, 10, '1002', 800), (1, 5, 2, 10, '1003', -800),
  (1, 6, 1, 20, '2002', 2100), (1, 6, 2, 10, '1002', -2100);

INSERT INTO CG62_PAGAMENTI (CG62_CODPAG, CG62_DESCR) VALUES
  ('RD30', 'Rimessa diretta 30 gg'),
  ('RB60', 'Ricevuta bancaria 60 gg'),
  ('BB', 'Bonifico bancario');

-- Codes 0..3 are the movement classes of the movement-type rights record.
INSERT INTO CGT0_TIPOMOV (CGT0_CODICE, CGT0_DESCR, CGT0_FLGCANREVOKE) VALUES
  ('0', 'Consuntivo', 1),
  ('1', 'Da consuntivare', 1),
  ('2', 'Preventivo', 1),
  ('3', 'Preventivo simulato', 1),
  ('4', 'Storico', 0);

------------------------------------------------------------------------------
-- Classifications
------------------------------------------------------------------------------

INSERT INTO MG07_MACROAREE (MG07_DITTA_CG18, MG07_TIPOCF, MG07_MACROAREA, MG07_DESCR) VALUES
  (1, 0, 'NORD', 'Nord Italia'), (1, 0, 'CENTRO', 'Centro Italia'), (1, 0, 'SUD', 'Sud Italia'),
  (1, 1, 'NORD', 'Nord Italia'), (1, 1, 'CENTRO', 'Centro Italia'), (1, 1, 'SUD', 'Sud Italia'),
  (2, 0, 'NORD', 'Nord Italia');

INSERT INTO MG08_AREE (MG08_DITTA_CG18, MG08_TIPOCF_MG07, MG08_MACROAREA_MG07, MG08_AREA, MG08_DESCR) VALUES
  (1, 0, 'NORD', 'NO', 'Nord-ovest'), (1, 0, 'NORD', 'NE', 'Nord-est'),
  (1, 0, 'CENTRO', 'CE', 'Centro'), (1, 0, 'SUD', 'SU', 'Sud'),
  (1, 1, 'NORD', 'NO', 'Nord-ovest'), (1, 1, 'CENTRO', 'CE', 'Centro'), (1, 1, 'SUD', 'SU', 'Sud'),
  (2, 0, 'NORD', 'NO', 'Nord-ovest');

INSERT INTO MG09_ZONE (MG09_DITTA_CG18, MG09_TIPOCF_MG08, MG09_MACROAREA_MG08, MG09_AREA_MG08, MG09_ZONA, MG09_DESCR) VALUES
  (1, 0, 'NORD', 'NO', 'MI', 'Milano'), (1, 0, 'NORD', 'NO', 'TO', 'Torino'),
  (1, 0, 'NORD', 'NE', 'VE', 'Veneto'), (1, 0, 'CENTRO', 'CE', 'RM', 'Roma'),
  (1, 0, 'CENTRO', 'CE', 'FI', 'Firenze'), (1, 0, 'SUD', 'SU', 'NA', 'Napoli'),
  (1, 0, 'SUD', 'SU', 'BA', 'Bari'),
  (1, 1, 'NORD', 'NO', 'MI', 'Milano'), (1, 1, 'SUD', 'SU', 'NA', 'Napoli'),
  (2, 0, 'NORD', 'NO', 'MI', 'Milano');

INSERT INTO MG10_MACROCAT (MG10_DITTA_CG18, MG10_TIPOCF, MG10_MACROCAT, MG10_DESCR) VALUES
  (1, 0, 'RET', 'Dettaglio'), (1, 0, 'ING', 'Ingrosso'), (1, 0, 'PA', 'Pubblica amministrazione'),
  (1, 1, 'NAZ', 'Fornitori nazionali'), (1, 1, 'EST', 'Fornitori esteri');

INSERT INTO MG11_CATEGORIE (MG11_DITTA_CG18, MG11_TIPOCF_MG10, MG11_MACROCAT_MG10, MG11_CATEG, MG11_DESCR) VALUES
  (1, 0, 'RET', 'GDO', 'Grande distribuzione'), (1, 0, 'RET', 'NEG', 'Negozi'),
  (1, 0, 'ING', 'ALI', 'Alimentare'), (1, 0, 'PA', 'COM', 'Comuni');

INSERT INTO MG12_SOTTOCAT (MG12_DITTA_CG18, MG12_TIPOCF_MG11, MG12_MACROCAT_MG11, MG12_CATEG_MG11, MG12_SOTTCAT, MG12_DESCR) VALUES
  (1, 0, 'RET', 'GDO', 'IPER', 'Ipermercati'), (1, 0, 'RET', 'GDO', 'SUPER', 'Supermercati');

INSERT INTO MG31_RAGGRCF1 (MG31_DITTA_CG18, MG31_TIPOCF, MG31_CODRAGGRCF1, MG31_DESCR) VALUES
  (1, 0, 'A', 'Classe A'), (1, 0, 'B', 'Classe B'), (1, 0, 'C', 'Classe C');

INSERT INTO MG32_RAGGRCF2 (MG32_DITTA_CG18, MG32_TIPOCF, MG32_CODRAGGRCF2, MG32_DESCR) VALUES
  (1, 0, 'STD', 'Clienti standard'), (1, 0, 'VIP', 'Clienti riservati');

INSERT INTO MG33_RAGGRCF3 (MG33_DITTA_CG18, MG33_TIPOCF, MG33_CODRAGGRCF3, MG33_DESCR) VALUES
  (1, 0, 'X1', 'Canale diretto'), (1, 0, 'X2', 'Canale indiretto');

-- Customer 13 has no classification at all.
INSERT INTO MG19_CLIFORVA (MG19_DITTA_CG18, MG19_TIPOCF_CG44, MG19_CLIFOR_CG44, MG19_MACROAREA, MG19_AREA,
                           MG19_ZONA, MG19_MACROCAT, MG19_CATEG, MG19_SOTTCAT, MG19_RAGGRCF1,
                           MG19_RAGGRCF2, MG19_RAGGCRF3) VALUES
  (1, 0, 1, 'NORD', 'NO', 'MI', 'RET', 'GDO', 'IPER', 'A', 'STD', 'X1'),
  (1, 0, 2, 'NORD', 'NO', 'TO', 'RET', 'GDO', 'SUPER', 'A', NULL, NULL),
  (1, 0, 3, 'NORD', 'NE', 'VE', 'ING', 'ALI', NULL, 'B', NULL, NULL),
  (1, 0, 4, 'CENTRO', 'CE', 'RM', 'RET', 'NEG', NULL, 'B', NULL, NULL),
  (1, 0, 5, 'SUD', 'SU', 'NA', 'RET', 'NEG', NULL, NULL, NULL, NULL),
  (1, 0, 6, 'SUD', 'SU', 'BA', 'ING', 'ALI', NULL, NULL, NULL, NULL),
  (1, 0, 7, 'NORD', 'NO', 'MI', 'RET', 'NEG', NULL, NULL, NULL, NULL),
  (1, 0, 8, 'CENTRO', 'CE', 'FI', 'PA', 'COM', NULL, NULL, NULL, NULL),
  (1, 0, 9, 'NORD', 'NE', 'VE', 'ING', 'ALI', NULL, 'C', NULL, NULL),
  (1, 0, 10, 'CENTRO', 'CE', 'RM', 'RET', 'NEG', NULL, NULL, NULL, 'X2'),
  (1, 0, 11, 'NORD', 'NE', 'VE', 'RET', 'GDO', NULL, NULL, 'VIP', NULL),
  (1, 0, 12, 'NORD', 'NO', 'MI', 'RET', 'GDO', 'IPER', 'A', 'STD', 'X1'),
  (1, 0, 40, 'CENTRO', 'CE', 'FI', 'RET', 'NEG', NULL, 'B', 'STD', NULL),
  (1, 1, 101, 'NORD', 'NO', 'MI', 'NAZ', NULL, NULL, NULL, NULL, NULL),
  (1, 1, 102, 'SUD', 'SU', 'NA', 'NAZ', NULL, NULL, NULL, NULL, NULL),
  (1, 1, 103, 'NORD', NULL, NULL, 'NAZ', NULL, NULL, NULL, NULL, NULL),
  (1, 1, 104, NULL, NULL, NULL, 'EST', NULL, NULL, NULL, NULL, NULL),
  (1, 1, 105, 'CENTRO', 'CE', NULL, 'NAZ', NULL, NULL, NULL, NULL, NULL),
  (2, 0, 1, 'NORD', 'NO', 'MI', NULL, NULL, NULL, NULL, NULL, NULL),
  (2, 0, 2, 'NORD', 'NO', 'MI', NULL, NULL, NULL, NULL, NULL, NULL),
  (2, 0, 3, 'NORD', NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL);

------------------------------------------------------------------------------
-- Agents
------------------------------------------------------------------------------

-- The code of agent 12 carries trailing blanks, as fixed-width host codes do.
INSERT INTO MG17_AGENTI (MG17_IDAGENTE, MG17_DITTA_CG18, MG17_AGENTE, MG17_DESCR) VALUES
  (12, 1, 'AG12   ', 'Giorgio Gialli'),
  (14, 1, 'AG14', 'Anna Fontana'),
  (21, 2, 'AG21', 'Bruno Serra');

INSERT INTO MG1C_CLIFORAGEMUL (MG1C_DITTA_CG18, MG1C_TIPOCF_CG44, MG1C_CLIFOR_CG44, MG1C_IDAGENTE_MG17) VALUES
  (1, 0, 12, 12), (1, 0, 40, 12),
  (1, 0, 1, 14), (1, 0, 3, 14), (1, 0, 4, 14),
  (2, 0, 1, 21);

INSERT INTO MG22_DESTINAZIONI (MG22_DITTA_CG18, MG22_TIPOCF_CG44, MG22_CLIFOR_CG44, MG22_CODDESTIN, MG22_DESCR) VALUES
  (1, 0, 12, 'D1', 'Magazzino Milano'),
  (1, 0, 12, 'D2', 'Punto vendita Monza'),
  (1, 0, 12, 'D3', 'Sede legale'),
  (1, 0, 40, 'D1', 'Deposito Prato'),
  (1, 0, 3, 'D1', 'Piattaforma Mestre');

-- D3 of customer 12 is assigned to no agent, so every agent sees it.
INSERT INTO MG2G_DESTAGEMUL (MG2G_DITTA_CG18, MG2G_TIPOCF_CG44, MG2G_CLIFOR_CG44, MG2G_CODDESTIN_MG22, MG2G_IDAGENTE_MG17) VALUES
  (1, 0, 12, 'D1', 12),
  (1, 0, 12, 'D2', 14),
  (1, 0, 40, 'D1', 12),
  (1, 0, 3, 'D1', 14);

------------------------------------------------------------------------------
-- Warehouse
------------------------------------------------------------------------------

INSERT INTO MG36_DOCUMENTI (MG36_CODDOCUM, MG36_DESCR, MG36_INDSTAPER, MG36_DITTA_CG18, MG36_NUMREG) VALUES
  ('FTV', 'Fattura di vendita', 0, NULL, 1),
  ('DDT', 'Documento di trasporto', 0, NULL, 2),
  ('OCL', 'Ordine cliente', 0, NULL, 3),
  ('NCV', 'Nota di credito', 0, NULL, 1),
  ('OFF', 'Offerta', 0, NULL, 4),
  ('FTA', 'Fattura di acquisto', 0, NULL, 5),
  ('FTVP', 'Fattura accompagnatoria (personalizzata)', 1, 1, 1);

INSERT INTO MG3G_DOCDITTA (MG3G_DITTA_CG18, MG3G_CODDOCUM_MG36, MG3G_INDSTAPER_MG36) VALUES
  (1, 'FTV', 0), (1, 'DDT', 0), (1, 'OCL', 0), (1, 'NCV', 0), (1, 'OFF', 0), (1, 'FTA', 0), (1, 'FTVP', 1),
  (2, 'FTV', 0), (2, 'DDT', 0), (2, 'OCL', 0), (2, 'FTA', 0);

INSERT INTO MG3N_TRASFDOC (MG3N_CODTRASFDOC, MG3N_DESCR, MG3N_INDSTAPER, MG3N_DOCORIG_MG36, MG3N_DOCDEST_MG36) VALUES
  ('OCL-DDT', 'Ordine in documento di trasporto', 0, 'OCL', 'DDT'),
  ('DDT-FTV', 'Documento di trasporto in fattura', 0, 'DDT', 'FTV'),
  ('OFF-OCL', 'Offerta in ordine', 0, 'OFF', 'OCL');

INSERT INTO MG51_CAUSALIMAG (MG51_CAUSMAG, MG51_DESCR) VALUES
  ('VEN', 'Vendita'), ('ACQ', 'Acquisto'), ('TRA', 'Trasferimento'), ('INV', 'Rettifica inventario');

INSERT INTO MG58_DEPOSITI (MG58_DITTA_CG18, MG58_CODDEP, MG58_DESCR) VALUES
  (1, 'A1', 'Magazzino centrale'),
  (1, 'B2', 'Magazzino secondario'),
  (1, 'C3', 'Conto visione'),
  (1, 'D4', 'Resi'),
  (2, 'A1', 'Magazzino servizi'),
  (2, 'C3', 'Ricambi');

INSERT INTO MG6W_STATIART (MG6W_INDSTATO, MG6W_DESCR) VALUES
  (0, 'Attivo'), (1, 'In esaurimento'), (2, 'Bloccato acquisti'), (3, 'Obsoleto'), (4, 'Nuovo');

INSERT INTO MG4T_TIPILISTINO (MG4T_TIPOLIST, MG4T_DESCR) VALUES
  (1, 'Listino base'), (2, 'Listino ingrosso'), (3, 'Listino dettaglio'),
  (4, 'Listino promozionale'), (5, 'Listino riservato');

-- Families: ELE electric tools, MEC hand tools, IDR plumbing, SRV services.
INSERT INTO MG66_ARTICOLI (MG66_DITTA_CG18, MG66_CODART, MG66_DESCR, MG66_CODFAM, MG66_INDSTATO_MG6W, MG66_TIPOLIST_MG4T) VALUES
  (1, 'ART001', 'Trapano 500W', 'ELE', 0, 1),
  (1, 'ART002', 'Avvitatore', 'ELE', 0, 3),
  (1, 'ART003', 'Smerigliatrice', 'ELE', 1, 1),
  (1, 'ART004', 'Chiave inglese', 'MEC', 0, 2),
  (1, 'ART005', 'Set cacciaviti', 'MEC', 0, 3),
  (1, 'ART006', 'Morsa da banco', 'MEC', 3, 1),
  (1, 'ART007', 'Rubinetto', 'IDR', 0, 5),
  (1, 'ART008', 'Raccordo mezzo pollice', 'IDR', 2, 2),
  (1, 'ART009', 'Pompa sommersa', 'IDR', 3, 4),
  (1, 'ART010', 'Trapano a colonna', 'ELE', 4, 1),
  (1, 'ART011', 'Tubo flessibile', 'IDR', 0, 3),
  (1, 'ART012', 'Seghetto', 'MEC', 1, 5),
  (2, 'SRV001', 'Consulenza oraria', 'SRV', 0, 1),
  (2, 'SRV002', 'Manutenzione programmata', 'SRV', 0, 1);

INSERT INTO MG97_GIACENZE (MG97_DITTA_CG18, MG97_CODDEP_MG58, MG97_CODART_MG66, MG97_QTA) VALUES
  (1, 'A1', 'ART001', 25), (1, 'A1', 'ART004', 120), (1, 'A1', 'ART007', 60),
  (1, 'B2', 'ART001', 5), (1, 'B2', 'ART002', 14), (1, 'B2', 'ART009', 3),
  (1, 'C3', 'ART005', 8), (1, 'C3', 'ART011', 40),
  (1, 'D4', 'ART006', 2), (1, 'D4', 'ART008', 11);

INSERT INTO MG0F_BLMPARAM (MG0F_DITTA_CG18, MG0F_CODPARAM, MG0F_DESCR) VALUES
  (1, 'BLM1', 'Blocco qualita'),
  (1, 'BLM2', 'Blocco inventario'),
  (1, 'BLM3', 'Blocco resi'),
  (2, 'BLM1', 'Blocco qualita');

------------------------------------------------------------------------------
-- Documents
------------------------------------------------------------------------------

INSERT INTO DO11_DOCTESTATA (DO11_DITTA_CG18, DO11_NUMREG_CO99, DO11_DOCUM_MG36, DO11_NUMDOC, DO11_DATADOC,
                             DO11_DITTACF_CG44, DO11_TIPOCF_CG44, DO11_CLIFOR_CG44, DO11_CODSEDE_CG31,
                             DO11_CODDEP, DO11_TOTALE) VALUES
  (1, 1001, 'FTV', 1, '2024-01-10', 1, 0, 1, 1, 'A1', 1200),
  (1, 1002, 'FTV', 2, '2024-01-12', 1, 0, 2, 3, 'A1', 800),
  (1, 1003, 'DDT', 1, '2024-01-15', 1, 0, 3, 1, 'B2', 0),
  (1, 1004, 'OCL', 1, '2024-01-20', 1, 0, 4, 7, 'C3', 450),
  (1, 1005, 'NCV', 1, '2024-01-22', 1, 0, 1, 1, 'A1', -120),
  (1, 1006, 'OFF', 1, '2024-02-01', 1, 0, 5, 12, 'D4', 300),
  (1, 1007, 'FTV', 3, '2024-02-03', 1, 0, 7, 1, 'C3', 640),
  (1, 1008, 'FTV', 4, '2024-02-05', 1, 0, 12, 1, 'C3', 980),
  (1, 1009, 'DDT', 2, '2024-02-06', 1, 0, 12, 3, 'D4', 0),
  (1, 1010, 'OCL', 2, '2024-02-08', 1, 0, 40, 7, 'C3', 1500),
  (1, 1011, 'FTV', 5, '2024-02-10', 1, 0, 40, NULL, NULL, 220),
  (1, 1012, 'FTV', 6, '2024-02-12', 1, 0, 8, 7, 'A1', 3000),
  (1, 1013, 'OCL', 3, '2024-02-15', 1, 0, 9, 1, 'C3', 700),
  (1, 1014, 'DDT', 3, '2024-02-20', 1, 0, 10, 7, 'D4', 0),
  (1, 1015, 'FTV', 7, '2024-02-22', 1, 0, 13, 7, 'C3', 90),
  (1, 1016, 'FTA', 1, '2024-02-25', 1, 1, 101, 1, 'A1', 2100),
  (1, 1017, 'FTA', 2, '2024-02-26', 1, 1, 103, 1, 'C3', 510),
  (1, 1018, 'FTA', 3, '2024-03-01', 1, 1, 104, 7, 'D4', 1900),
  (1, 1019, 'FTVP', 1, '2024-03-02', 1, 0, 4, 7, 'C3', 330),
  (1, 1020, 'OFF', 2, '2024-03-04', 1, 0, 3, 1, 'C3', 150),
  (1, 1021, 'FTV', 8, '2024-03-05', 1, 0, 11, 1, 'C3', 410),
  (1, 1022, 'DDT', 4, '2024-03-06', 1, 0, 6, NULL, 'C3', 0),
  (2, 2001, 'FTV', 1, '2024-01-11', 2, 0, 1, 1, 'A1', 500),
  (2, 2002, 'FTV', 2, '2024-01-18', 2, 0, 2, 2, 'C3', 700),
  (2, 2003, 'DDT', 1, '2024-02-02', 2, 0, 3, 1, 'A1', 0),
  (2, 2004, 'FTA', 1, '2024-02-09', 2, 1, 101, 1, 'C3', 1300),
  (2, 2005, 'OCL', 1, '2024-02-19', 2, 0, 1, 2, 'A1', 260);

INSERT INTO DO29_DOCTESAGENTI (DO29_DITTA_CG18, DO29_NUMREG_CO99, DO29_IDAGENTE_MG17) VALUES
  (1, 1008, 12), (1, 1009, 12), (1, 1010, 12), (1, 1011, 12),
  (1, 1001, 14), (1, 1003, 14), (1, 1004, 14), (1, 1020, 14),
  (2, 2001, 21);

------------------------------------------------------------------------------
-- Production
------------------------------------------------------------------------------

INSERT INTO PD68_PROGETTI (PD68_DITTA_CG18, PD68_CODPROG, PD68_DESCR) VALUES
  (1, 'P1', 'Impianto Milano'),
  (1, 'P2', 'Revamping Torino'),
  (1, 'P3', 'Linea di assemblaggio'),
  (1, 'P4', 'Magazzino automatico'),
  (1, 'P5', 'Nuovo stabilimento'),
  (1, 'P6', 'Manutenzione 2024'),
  (1, 'P7', 'Ricerca materiali'),
  (1, 'P8', 'Formazione'),
  (2, 'Q1', 'Assistenza clienti'),
  (2, 'Q2', 'Sistema qualita'),
  (2, 'Q3', 'Migrazione dati');

INSERT INTO PD0C_NODO (PD0C_DITTA_CG18, PD0C_CODPROG_PD68, PD0C_CODNODO, PD0C_DESCR, PD0C_CODNODOPADRE) VALUES
  (1, 'P3', 'N1', 'Progettazione', NULL),
  (1, 'P3', 'N2', 'Acquisti', 'N1'),
  (1, 'P3', 'N3', 'Montaggio', 'N1'),
  (1, 'P4', 'N1', 'Analisi', NULL),
  (1, 'P4', 'N2', 'Realizzazione', 'N1'),
  (1, 'P5', 'N1', 'Permessi', NULL),
  (2, 'Q1', 'N1', 'Call center', NULL),
  (2, 'Q1', 'N2', 'Interventi', NULL);

-- SIM3 is stored blank-padded, as the host writes fixed-width codes.
INSERT INTO PD90_SIMULAZIONI (PD90_DITTA_CG18, PD90_SIMULAZIONE, PD90_DESCR) VALUES
  (1, 'SIM1', 'Piano base'),
  (1, 'SIM2', 'Piano espansione'),
  (1, 'SIM3  ', 'Piano ridotto'),
  (2, 'SIM1', 'Piano servizi');

------------------------------------------------------------------------------
-- Framework objects
------------------------------------------------------------------------------

INSERT INTO FW34_VISSOURCE (FW34_CODICEDS, FW34_DESCR) VALUES
  ('DS_VENDITE', 'Vendite'), ('DS_ACQUISTI', 'Acquisti'), ('DS_MAGAZZINO', 'Magazzino');

INSERT INTO FW36_VISMATRICI (FW36_CODICEMATR, FW36_DESCR) VALUES
  ('MATR_FATT', 'Matrice fatture'), ('MATR_ORD', 'Matrice ordini'), ('MATR_LETT', 'Lettera ai clienti');

INSERT INTO FW57_STPLIBERE (FW57_CODICE, FW57_DESCR) VALUES
  ('STP01', 'Scadenzario'), ('STP02', 'Provvigioni agenti'),
  ('STP03', 'Margini per cliente'), ('STP04', 'Inventario valorizzato');

INSERT INTO FW3F_FUNZIONI (FW3F_CODICE, FW3F_DESCR) VALUES
  (101, 'Chiusura contabile'), (102, 'Ricalcolo prezzi'),
  (103, 'Import listini'), (104, 'Cancellazione documenti');

------------------------------------------------------------------------------
-- Revocations of ROSSI (user 5)
------------------------------------------------------------------------------

-- FW31_RVKPARAMETRI rows are numbered by kind: 10xx ROSSI, 20xx other users,
-- 30xx groups.
INSERT INTO FW31_RVKPARAMETRI (FW31_CODICE, FW31_ID_FW07, FW31_INDTIPO, FW31_DITTARAGG, FW31_CODTIPO,
                               FW31_FLGABILITATO, FW31_FLGMODIFICA, FW31_FLGELIMINA, FW31_FLGINSERISCI) VALUES
  -- 0 accounting reasons: the whole register type 3, and the reason STORNO
  (1001, 5, 0, 3, '', 0, 1, 1, 1),
  (1002, 5, 0, 0, 'STORNO', 0, 1, 1, 1),
  -- 1 movement types: consuntivo (0) and preventivo simulato (3)
  (1003, 5, 1, -1, '0', 0, 1, 1, 1),
  (1004, 5, 1, -1, '3', 0, 1, 1, 1),
  -- 4 offices 3 and 12 of company 1
  (1005, 5, 4, 1, '3', 0, 1, 1, 1),
  (1006, 5, 4, 1, '12', 0, 1, 1, 1),
  -- 6 warehouses A1 and B2 of company 1
  (1007, 5, 6, 1, 'A1', 0, 1, 1, 1),
  (1008, 5, 6, 1, 'B2', 0, 1, 1, 1),
  -- 7 document types (scope = MG36_INDSTAPER): NCV, OFF and the personalised
  -- FTVP revoked; OCL enabled without update (insert flag set but gated by
  -- update); DDT enabled without delete and insert
  (1009, 5, 7, 0, 'NCV', 0, 1, 1, 1),
  (1010, 5, 7, 0, 'OFF', 0, 1, 1, 1),
  (1011, 5, 7, 1, 'FTVP', 0, 1, 1, 1),
  (1012, 5, 7, 0, 'OCL', 1, 0, 1, 1),
  (1013, 5, 7, 0, 'DDT', 1, 1, 0, 0),
  -- 8 projects P1 and P2 of company 1
  (1014, 5, 8, 1, 'P1', 0, 1, 1, 1),
  (1015, 5, 8, 1, 'P2', 0, 1, 1, 1),
  -- 9 document transfer type
  (1016, 5, 9, 0, 'DDT-FTV', 0, 1, 1, 1),
  -- 10 order-line state 3
  (1017, 5, 10, -1, '3', 0, 1, 1, 1),
  -- 11 journal transfer type 1 (preventivo in consuntivo)
  (1018, 5, 11, -1, '1', 0, 1, 1, 1),
  -- 12 free report
  (1019, 5, 12, 0, 'STP02', 0, 1, 1, 1),
  -- 13 export data source (scope 0) and office configuration (scope 1)
  (1020, 5, 13, 0, 'DS_VENDITE', 0, 1, 1, 1),
  (1021, 5, 13, 1, 'MATR_ORD', 0, 1, 1, 1),
  -- 14 article state 3 (obsolete)
  (1022, 5, 14, -1, '3', 0, 1, 1, 1),
  -- 15 simulation SIM3 of company 1
  (1023, 5, 15, 1, 'SIM3', 0, 1, 1, 1),
  -- 16 model of the customer wizard
  (1024, 5, 16, 0, 'WZCLI', 0, 1, 1, 1),
  -- 19 bill-of-materials types: 35 enabled, 99 (all of 30..39) revoked,
  -- 5 enabled without update
  (1025, 5, 19, -1, '35', 1, 1, 1, 1),
  (1026, 5, 19, -1, '99', 0, 1, 1, 1),
  (1027, 5, 19, -1, '5', 1, 0, 1, 1),
  -- 20 context
  (1028, 5, 20, -1, 'CTX_CONT', 0, 1, 1, 1),
  -- 26 accounts (scope = account group): 10/1001 revoked, 10/1002 not shown
  (1029, 5, 26, 10, '1001', 0, 1, 1, 1),
  (1030, 5, 26, 10, '1002', 1, 0, 1, 1),
  -- 27, 28 import and export layouts of structure 1; 29 set
  (1031, 5, 27, 1, 'IMP01', 0, 1, 1, 1),
  (1032, 5, 28, 1, 'EXP01', 0, 1, 1, 1),
  (1033, 5, 29, -1, 'INS01', 0, 1, 1, 1),
  -- 30 goods-blocking model BLM2 of company 1
  (1034, 5, 30, 1, 'BLM2', 0, 1, 1, 1),
  -- 31 CERVED operations: CRV1 no insert, CRV2 no update
  (1035, 5, 31, -1, 'CRV1', 1, 1, 1, 0),
  (1036, 5, 31, -1, 'CRV2', 1, 0, 1, 1),
  -- 32 price-list types 2 and 5
  (1037, 5, 32, -1, '2', 0, 1, 1, 1),
  (1038, 5, 32, -1, '5', 0, 1, 1, 1),
  -- 33 work-cycle types: 31 revoked, 35 enabled without update
  (1039, 5, 33, -1, '31', 0, 1, 1, 1),
  (1040, 5, 33, -1, '35', 1, 0, 1, 1),
  -- 34, 35 revision states of bills of materials and work cycles
  (1041, 5, 34, -1, '2', 0, 1, 1, 1),
  (1042, 5, 35, -1, '3', 0, 1, 1, 1),
  -- 36, 37 document types that may not choose a revised / manual bill
  (1043, 5, 36, 0, 'OCL', 0, 1, 1, 1),
  (1044, 5, 37, 0, 'DDT', 0, 1, 1, 1),
  -- 38 activity 01 on production documents of index 1
  (1045, 5, 38, 1, '01', 0, 1, 1, 1),
  -- other users: BIANCHI (company 2 only) and the inactive NERI
  (2001, 6, 8, 2, 'Q1', 0, 1, 1, 1),
  (2002, 6, 6, 2, 'C3', 0, 1, 1, 1),
  (2003, 8, 6, 1, 'A1', 0, 1, 1, 1),
  -- VERDI: a project of his own
  (2004, 7, 8, 1, 'P5', 0, 1, 1, 1);

-- Group rows. VERDI (groups AMM and MAG): warehouse B2 is revoked by both
-- groups, so it is revoked for him; D4 only by AMM, so it stays enabled;
-- NCV is changeable through the most permissive flags of the two groups;
-- P5 has a row of his own, which wins over the AMM row.
INSERT INTO FW31_RVKPARAMETRI (FW31_CODICE, FW31_ID_FW06, FW31_INDTIPO, FW31_DITTARAGG, FW31_CODTIPO,
                               FW31_FLGABILITATO, FW31_FLGMODIFICA, FW31_FLGELIMINA, FW31_FLGINSERISCI) VALUES
  (3001, 1, 6, 1, 'B2', 0, 1, 1, 1),
  (3002, 3, 6, 1, 'B2', 0, 1, 1, 1),
  (3003, 1, 6, 1, 'D4', 0, 1, 1, 1),
  (3004, 1, 7, 0, 'NCV', 1, 0, 1, 1),
  (3005, 3, 7, 0, 'NCV', 1, 1, 0, 1),
  (3006, 1, 8, 1, 'P5', 1, 1, 1, 1);

-- Customer/supplier groupings and offices. ROSSI in company 1:
--   customers: macro-area SUD, zone NORD/NO/TO, macro-category PA,
--   grouping 1 C and grouping 2 VIP (code in FW32_CODRAGG), grouping 3 X2
--   (code in FW32_CODMACRO); CENTRO is listed but enabled (revokes nothing);
--   suppliers: category EST and area SUD/SU; offices 3 and 12.
INSERT INTO FW32_RVKCLIFOR (FW32_ID_FW07, FW32_DITTA, FW32_TIPOCF, FW32_TIPORAGG, FW32_CODMACRO,
                            FW32_CODMIDDLE, FW32_CODRAGG, FW32_FLGABILITATO) VALUES
  (5, 1, 0, 'AREA', 'SUD', '', '', 0),
  (5, 1, 0, 'AREA', 'NORD', 'NO', 'TO', 0),
  (5, 1, 0, 'AREA', 'CENTRO', '', '', 1),
  (5, 1, 0, 'CAT', 'PA', '', '', 0),
  (5, 1, 0, 'RAGG1', '', '', 'C', 0),
  (5, 1, 0, 'RAGG2', '', '', 'VIP', 0),
  (5, 1, 0, 'RAGG3', 'X2', '', '', 0),
  (5, 1, 1, 'CAT', 'EST', '', '', 0),
  (5, 1, 1, 'AREA', 'SUD', 'SU', '', 0),
  (5, 1, 0, 'SEDE', '', '', '3', 0),
  (5, 1, 0, 'SEDE', '', '', '12', 0),
  (8, 1, 0, 'AREA', 'NORD', '', '', 0);

-- Customers and suppliers revoked one by one (the row for customer 1 is
-- enabled and revokes nothing).
INSERT INTO FW3C_RVKCLIFORSING (FW3C_ID_FW07, FW3C_DITTA_CG18, FW3C_TIPOCF_CG44, FW3C_CLIFOR_CG44, FW3C_FLGABILITATO) VALUES
  (5, 1, 0, 7, 0),
  (5, 1, 0, 1, 1),
  (5, 1, 1, 103, 0),
  (6, 2, 0, 2, 0);

-- Project nodes (the P5/N1 row of ROSSI is enabled again).
INSERT INTO FW3N_RVKNODI (FW3N_ID_FW07, FW3N_DITTA_CG18, FW3N_CODPROG_PD68, FW3N_CODNODO, FW3N_FLGABILITATO) VALUES
  (5, 1, 'P3', 'N2', 0),
  (5, 1, 'P4', 'N1', 0),
  (5, 1, 'P5', 'N1', 1),
  (6, 2, 'Q1', 'N1', 0);

-- Excluded companies: ROSSI may not see company 2, neither may the group AMM
-- (hence VERDI). The row of ZentAd is an old exclusion that only the
-- company check reads, since the privileged code bypasses every other test.
INSERT INTO FW05_DITTAESCLUSI (FW05_ID_FW07, FW05_ID_FW06, FW05_DITTA_CG18, FW05_FLGVISIBLE, FW05_FLGABIL) VALUES
  (5, NULL, 2, 0, 0),
  (NULL, 1, 2, 0, 0),
  (1, NULL, 2, 0, 1);

-- Article families of ROSSI in company 1: ELE without insert and delete,
-- MEC with the update flag 2 (only 1 allows).
INSERT INTO FW3H_RVKARTICOLI (FW3H_ID_FW07, FW3H_DITTA, FW3H_TIPORAGG, FW3H_CODMACRO, FW3H_FLGINSERIMENTO,
                              FW3H_FLGMODIFICA, FW3H_FLGELIMINA) VALUES
  (5, 1, 'FAM', 'ELE', 0, 1, 0),
  (5, 1, 'FAM', 'MEC', 1, 2, 1);

-- Application functions: ROSSI may not delete documents (104); his row for
-- 102 is enabled. Groups: 101 revoked by AMM and MAG (revoked for VERDI),
-- 102 revoked by AMM only and 103 by MAG only (both allowed for VERDI).
INSERT INTO FW3G_RVKFUNZIONI (FW3G_ID_FW07, FW3G_ID_FW06, FW3G_CODICE_FW3F, FW3G_FLGABILITATO) VALUES
  (5, NULL, 104, 0),
  (5, NULL, 102, 1),
  (NULL, 1, 101, 0),
  (NULL, 3, 101, 0),
  (NULL, 1, 102, 0),
  (NULL, 3, 103, 0),
  (NULL, 1, 103, 1);

-- Login history: BRUNO failed twice on 4 March 2024, was enabled again at
-- 08:30 and then logged in; GALLO was locked out after three failures.
INSERT INTO FW33_RVKUSER (FW33_ID_FW07, FW33_DATA, FW33_AZIONE, FW33_RISULTATO, FW33_WINUSER, FW33_DATAORA) VALUES
  (10, '20240304', 0, 1, 'PC-BRUNO', '2024-03-04 08:01:10.000'),
  (10, '20240304', 0, 1, 'PC-BRUNO', '2024-03-04 08:01:40.000'),
  (10, '20240304', 10, 0, 'ADMIN', '2024-03-04 08:30:00.000'),
  (10, '20240304', 0, 0, 'PC-BRUNO', '2024-03-04 08:31:05.000'),
  (11, '20240305', 0, 1, 'PC-GALLO', '2024-03-05 09:12:00.000'),
  (11, '20240305', 0, 1, 'PC-GALLO', '2024-03-05 09:12:30.000'),
  (11, '20240305', 0, 1, 'PC-GALLO', '2024-03-05 09:13:02.000');
