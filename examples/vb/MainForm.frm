VERSION 5.00
Object = "{571663B9-3AB5-4B9A-900E-7BA18431BC3F}#1.0#0"; "Corvina.ocx"
Begin VB.Form MainForm
   Caption         =   "Corvina"
   ClientHeight    =   2100
   ClientLeft      =   60
   ClientTop       =   345
   ClientWidth     =   4500
   LinkTopic       =   "MainForm"
   ScaleHeight     =   2100
   ScaleWidth      =   4500
   Begin Corvina.cPlayer Player
      Left            =   3840
      Top             =   120
      _ExtentX        =   900
      _ExtentY        =   900
   End
   Begin Corvina.cAudioGraph Graph
      Height          =   1100
      Left            =   120
      TabIndex        =   0
      Top             =   840
      Width           =   4260
      _ExtentX        =   7514
      _ExtentY        =   1940
   End
   Begin VB.TextBox FileName
      Height          =   315
      Left            =   120
      TabIndex        =   1
      Top             =   120
      Width           =   2500
   End
   Begin VB.CommandButton PlayButton
      Caption         =   "Play"
      Default         =   -1  'True
      Height          =   315
      Left            =   2700
      TabIndex        =   2
      Top             =   120
      Width           =   1000
   End
   Begin VB.Label Status
      Height          =   255
      Left            =   120
      TabIndex        =   3
      Top             =   510
      Width           =   4260
   End
   Begin VB.Timer Clock
      Enabled         =   0   'False
      Interval        =   40
      Left            =   3840
      Top             =   480
   End
End
Attribute VB_Name = "MainForm"
Attribute VB_GlobalNameSpace = False
Attribute VB_Creatable = False
Attribute VB_PredeclaredId = True
Attribute VB_Exposed = False
Option Explicit

Private Const WaveMapper As Long = -1

Private Sub Form_Load()
    Player.Init
    Graph.Init
End Sub

Private Sub Form_Unload(Cancel As Integer)
    Clock.Enabled = False
    Graph.DeInit
    Player.DeInit
End Sub

Private Sub PlayButton_Click()
    Dim Result As Long
    If Player.IsPlaying Then
        Player.PlayStop ' DonePlay is raised when it is over
        Exit Sub
    End If
    Result = Player.PlayStart(FileName.Text, WaveMapper, 0)
    If Result <> 0 Then
        Status.Caption = "Could not be played: " & Result
        Exit Sub
    End If
    Player.GetID3Tags FileName.Text
    PlayButton.Caption = "Stop"
    Clock.Enabled = True
End Sub

Private Sub Clock_Timer()
    Status.Caption = Player.GetSecondsAsTimeString(Player.PositionGet) & "  " & Player.Tag_Title
    ' The address is another one after each block: read it anew each time.
    Graph.SetAudioData Player.AudioDataOut
    Graph.Display
End Sub

Private Sub Player_DonePlay()
    Clock.Enabled = False
    PlayButton.Caption = "Play"
    Status.Caption = ""
    Graph.ClearGraph
End Sub

Private Sub Player_Err(ByVal FunctionName As String, ErrorNumber As Long, ByVal ErrorDecription As String)
    ' The reset of the closed device, number 5, comes at the end of every playback.
    If FunctionName = "StopPlayAudio:waveOutReset" And ErrorNumber = 5 Then Exit Sub
    Status.Caption = FunctionName & " " & ErrorNumber & " " & ErrorDecription
End Sub
