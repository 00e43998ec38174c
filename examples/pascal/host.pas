{ Plays an audio file and waits for its end:  host FILE

  A console host in Free Pascal. It knows the control by Corvina_1_0_TLB alone, the unit that the importer
  makes of the type library (README.md). Corvina.ocx must be registered. }
program host;

{$mode delphi}{$H+}
{$apptype console}

uses
  Windows, ActiveX, SysUtils, ComObj, Corvina_1_0_TLB;

const
  WaveMapper = -1;
  BufferSize = 0; // without effect

type
  { Receives the events of the player that it holds. }
  TListener = class
  private
    FEvents: TEvscPlayer;
    FDone: Boolean;
    procedure Done(Sender: TObject);
    procedure Error(Sender: TObject; FunctionName: WideString; var ErrorNumber: Integer;
      ErrorDecription: WideString);
    procedure Ended(Sender: TObject; Reason: PlayEndReason);
  public
    constructor Create;
    destructor Destroy; override;
    function Player: _cPlayer;
    procedure WaitUntilDone;
  end;

constructor TListener.Create;
begin
  FEvents := TEvscPlayer.Create(nil);
  FEvents.OnDonePlay := Done;
  FEvents.OnErr := Error;
  FEvents.OnEnded := Ended;
end;

destructor TListener.Destroy;
begin
  FEvents.Free;
  inherited;
end;

function TListener.Player: _cPlayer;
begin
  Result := FEvents.ComServer;
end;

procedure TListener.Done(Sender: TObject);
begin
  WriteLn('done');
  FDone := True;
end;

{ The reset of the closed device, number 5, comes at the end of every playback. }
procedure TListener.Error(Sender: TObject; FunctionName: WideString; var ErrorNumber: Integer;
  ErrorDecription: WideString);
begin
  if (FunctionName <> 'StopPlayAudio:waveOutReset') or (ErrorNumber <> 5) then
    WriteLn('error: ', FunctionName, ' ', ErrorNumber, ' ', ErrorDecription);
end;

procedure TListener.Ended(Sender: TObject; Reason: PlayEndReason);
begin
  if Reason = PLAYEND_FINISHED then
    WriteLn('finished')
  else
    WriteLn('ended, reason ', Reason);
end;

{ The control lives by the messages of its thread. }
procedure TListener.WaitUntilDone;
var
  Message: TMsg;
begin
  while not FDone and GetMessage(@Message, 0, 0, 0) do
  begin
    TranslateMessage(@Message);
    DispatchMessage(@Message);
  end;
end;

type
  { The importer packs its records, but the control fills this one as C compilers align it: DeviceFormat is
    two bytes further on. }
  {$push}{$packrecords C}
  TDetails = record
    DeviceName: WideString;
    DeviceDriver: WideString;
    DeviceChannels: Smallint;
    DeviceFormat: Integer;
  end;
  {$pop}

procedure ShowDevice(const Player: _cPlayer);
var
  Details: TDetails;
  Outcome: Integer;
begin
  if Player.NumOfAudioDevices(AUDIOOUT) = 0 then
    Exit;
  Outcome := Player.GetDetailsDevice(0, AUDIOOUT, PAudioDeviceDetails(@Details)^);
  if Outcome = 0 then
    WriteLn('device: ', Details.DeviceName, ', ', Details.DeviceChannels, ' channel(s), formats ',
      IntToHex(Details.DeviceFormat, 5));
end;

procedure ShowFormat(const Player: _cPlayer);
begin
  WriteLn('format: ', Player.Info_Samplerate, ' Hz, ', Player.Info_BitsPerSample, ' bit, ',
    Player.Info_Channels, ' channel(s), ', Player.DurationMs, ' ms');
end;

{ The graph raises its event from within SetAudioData, which works without a window, too. }
procedure ShowLevelOf(const Player: _cPlayer);
var
  Graph: _cAudioGraph;
begin
  Graph := CocAudioGraph.Create;
  Graph.Init;
  Graph.Bands := 20;
  Graph.SetAudioData(Player.AudioDataOut);
  WriteLn('bands: ', Graph.Bands);
  Graph.DeInit;
end;

function Play(const FileName: WideString): Integer;
var
  Listener: TListener;
begin
  Listener := TListener.Create;
  try
    Listener.Player.Init;
    ShowDevice(Listener.Player);
    Result := Listener.Player.PlayStart(FileName, WaveMapper, BufferSize);
    if Result = 0 then
    begin
      ShowFormat(Listener.Player);
      ShowLevelOf(Listener.Player);
      Listener.WaitUntilDone;
    end
    else
      WriteLn('could not be played, result ', Result);
    Listener.Player.DeInit;
  finally
    Listener.Free;
  end;
end;

begin
  if ParamCount <> 1 then
  begin
    WriteLn('usage: host FILE');
    Halt(2);
  end;
  CoInitialize(nil);
  try
    ExitCode := Play(WideString(ParamStr(1)));
  except
    on Failure: Exception do
    begin
      WriteLn('error: ', Failure.Message);
      ExitCode := 1;
    end;
  end;
  CoUninitialize;
end.
