Unit Corvina_1_0_TLB;

//  Imported from Corvina.tlb

{$mode delphi}{$H+}

interface

// Dependency: stdole v2 (stdole2.pas)
//  Warning: 'GUID' not automatable in cCallbackdisp.QueryInterface
//  Warning: 'Ppointer' not automatable in cCallbackdisp.QueryInterface
//  Warning: 'Ppointer' not automatable in cCallbackdisp.GetTypeInfo
//  Warning: 'GUID' not automatable in cCallbackdisp.GetIDsOfNames
//  Warning: 'PShortInt' not automatable in cCallbackdisp.GetIDsOfNames
//  Warning: 'GUID' not automatable in cCallbackdisp.Invoke
//  Warning: 'DISPPARAMS' not automatable in cCallbackdisp.Invoke
//  Warning: 'EXCEPINFO' not automatable in cCallbackdisp.Invoke
//  Warning: 'PSafeArray' not automatable in cCallbackdisp.Samples
//  Warning: 'GUID' not automatable in ISubclassdisp.QueryInterface
//  Warning: 'Ppointer' not automatable in ISubclassdisp.QueryInterface
//  Warning: 'Ppointer' not automatable in ISubclassdisp.GetTypeInfo
//  Warning: 'GUID' not automatable in ISubclassdisp.GetIDsOfNames
//  Warning: 'PShortInt' not automatable in ISubclassdisp.GetIDsOfNames
//  Warning: 'GUID' not automatable in ISubclassdisp.Invoke
//  Warning: 'DISPPARAMS' not automatable in ISubclassdisp.Invoke
//  Warning: 'EXCEPINFO' not automatable in ISubclassdisp.Invoke
//  Warning: 'GUID' not automatable in _GSubclassdisp.QueryInterface
//  Warning: 'Ppointer' not automatable in _GSubclassdisp.QueryInterface
//  Warning: 'Ppointer' not automatable in _GSubclassdisp.GetTypeInfo
//  Warning: 'GUID' not automatable in _GSubclassdisp.GetIDsOfNames
//  Warning: 'PShortInt' not automatable in _GSubclassdisp.GetIDsOfNames
//  Warning: 'GUID' not automatable in _GSubclassdisp.Invoke
//  Warning: 'DISPPARAMS' not automatable in _GSubclassdisp.Invoke
//  Warning: 'EXCEPINFO' not automatable in _GSubclassdisp.Invoke
//  Warning: 'GUID' not automatable in IEncoderdisp.QueryInterface
//  Warning: 'Ppointer' not automatable in IEncoderdisp.QueryInterface
//  Warning: 'Ppointer' not automatable in IEncoderdisp.GetTypeInfo
//  Warning: 'GUID' not automatable in IEncoderdisp.GetIDsOfNames
//  Warning: 'PShortInt' not automatable in IEncoderdisp.GetIDsOfNames
//  Warning: 'GUID' not automatable in IEncoderdisp.Invoke
//  Warning: 'DISPPARAMS' not automatable in IEncoderdisp.Invoke
//  Warning: 'EXCEPINFO' not automatable in IEncoderdisp.Invoke
//  Warning: 'GUID' not automatable in _cPlayerdisp.QueryInterface
//  Warning: 'Ppointer' not automatable in _cPlayerdisp.QueryInterface
//  Warning: 'Ppointer' not automatable in _cPlayerdisp.GetTypeInfo
//  Warning: 'GUID' not automatable in _cPlayerdisp.GetIDsOfNames
//  Warning: 'PShortInt' not automatable in _cPlayerdisp.GetIDsOfNames
//  Warning: 'GUID' not automatable in _cPlayerdisp.Invoke
//  Warning: 'DISPPARAMS' not automatable in _cPlayerdisp.Invoke
//  Warning: 'EXCEPINFO' not automatable in _cPlayerdisp.Invoke
//  Warning: 'AudioDeviceDetails' not automatable in _cPlayerdisp.GetDetailsDevice
//  Warning: renamed parameter 'File' in __cPlayer.NextStarted to 'File_'
//  Warning: 'GUID' not automatable in _cAudioGraphdisp.QueryInterface
//  Warning: 'Ppointer' not automatable in _cAudioGraphdisp.QueryInterface
//  Warning: 'Ppointer' not automatable in _cAudioGraphdisp.GetTypeInfo
//  Warning: 'GUID' not automatable in _cAudioGraphdisp.GetIDsOfNames
//  Warning: 'PShortInt' not automatable in _cAudioGraphdisp.GetIDsOfNames
//  Warning: 'GUID' not automatable in _cAudioGraphdisp.Invoke
//  Warning: 'DISPPARAMS' not automatable in _cAudioGraphdisp.Invoke
//  Warning: 'EXCEPINFO' not automatable in _cAudioGraphdisp.Invoke
Uses
  Windows,ActiveX,Classes,Variants,stdole2,EventSink;
Const
  CorvinaMajorVersion = 1;
  CorvinaMinorVersion = 0;
  CorvinaLCID = 0;
  LIBID_Corvina : TGUID = '{571663B9-3AB5-4B9A-900E-7BA18431BC3F}';

  IID_cCallback : TGUID = '{18C99145-FC1D-4A52-A1D7-07A0E8BA86A0}';
  IID_ISubclass : TGUID = '{09F6F97C-68FB-4816-A1A9-EA30AE0BC32D}';
  IID__GSubclass : TGUID = '{A53F21C3-033A-4F1A-8CC4-A1B3DF14D5F3}';
  IID_IEncoder : TGUID = '{5E7AA9D7-4B7B-47D8-BED9-42ACD61BA4DC}';
  IID__cPlayer : TGUID = '{EDD758A9-B719-4C2C-8AC9-3BF1C7434DF7}';
  IID___cPlayer : TGUID = '{02D68996-3A43-464D-AEA2-E18E58BAD704}';
  IID__cAudioGraph : TGUID = '{FCF2B35E-7D2D-46F4-AE38-A9D77CC380A3}';
  IID___cAudioGraph : TGUID = '{AA7367AD-F18B-4249-BD89-FA81086837C5}';
  CLASS_cPlayer : TGUID = '{38604A89-7915-4ACE-91A0-1EB6D82D92B3}';
  CLASS_cAudioGraph : TGUID = '{1BF4D8EB-FE35-495D-86F8-9A0675E9538C}';
  CLASS_GSubclass : TGUID = '{2D1CFBE8-9C07-4594-B933-DDEE6C06AE18}';

//Enums

Type
  InOut =LongWord;
Const
  AUDIOIN = $0000000000000001;
  AUDIOOUT = $0000000000000002;
Type
  PlayState =LongWord;
Const
  PLAY_STOPPED = $0000000000000000;
  PLAY_PLAYING = $0000000000000001;
  PLAY_PAUSED = $0000000000000002;
Type
  PlayEndReason =LongWord;
Const
  PLAYEND_FINISHED = $0000000000000000;
  PLAYEND_STOPPED = $0000000000000001;
  PLAYEND_DEVICE_LOST = $0000000000000002;
  PLAYEND_ERROR = $0000000000000003;
Type
  MPEGMode =LongWord;
Const
  STEREO_MODE = $0000000000000000;
  JOINT_STEREO_MODE = $0000000000000001;
  DUAL_CHANNEL_MODE = $0000000000000002;
  MONO_MODE = $0000000000000003;
  NOT_SET_MODE = $0000000000000004;
  FORCE_JOINT_STEREO_MODE = $0000000000000005;
Type
  VBRMode =LongWord;
Const
  OFF_VBR = $0000000000000000;
  MT_VBR = $0000000000000001;
  RH_VBR = $0000000000000002;
  ABR_VBR = $0000000000000003;
  MTRH_VBR = $0000000000000004;
  MAX_INDICATOR_VBR = $0000000000000005;
  DEFAULT_VBR = $0000000000000006;
Type
  OGG_MODE =LongWord;
Const
  Quality_Mode = $0000000000000001;
  Bitrate_Mode = $0000000000000002;
Type
  eRecordTo =LongWord;
Const
  RECORD_TO_WAV = $0000000000000001;
  RECORD_TO_MP3 = $0000000000000002;
  RECORD_TO_WMA = $0000000000000003;
  RECORD_TO_OGG = $0000000000000004;
  RECORD_TO_APE = $0000000000000005;
Type
  eTagsMode =LongWord;
Const
  ACM_ALL = $0000000000000000;
  ACM_WFORMATTAG = $0000000000010000;
  ACM_NCHANNELS = $0000000000020000;
  ACM_NSAMPLESPERSEC = $0000000000040000;
  ACM_WBITSPERSAMPLE = $0000000000080000;
  ACM_CONVERT = $0000000000100000;
  ACM_SUGGEST = $0000000000200000;
  ACM_HARDWARE = $0000000000400000;
  ACM_INPUT = $0000000000800000;
  ACM_OUTPUT = $0000000001000000;
Type
  EMsgResponse =LongWord;
Const
  emrConsume = $0000000000000000;
  emrPostProcess = $0000000000000001;
  emrPreprocess = $0000000000000002;
Type
  AudioGraphStyle =LongWord;
Const
  AMPLITUDE_STYLE = $0000000000000000;
  FREQUENCY_STYLE = $0000000000000001;
Type
  AudioGraphLevelScale =LongWord;
Const
  LINEAR_SCALE = $0000000000000000;
  DECIBEL_SCALE = $0000000000000001;
Type
  AudioGraphFrequencyAxis =LongWord;
Const
  BAND_AXIS = $0000000000000000;
  OCTAVE_AXIS = $0000000000000001;
Type
  BorderStyle =LongWord;
Const
  StyleNone = $0000000000000000;
  StyleFixed = $0000000000000001;
//Forward declarations

Type
 cCallback = interface;
 cCallbackDisp = dispinterface;
 ISubclass = interface;
 ISubclassDisp = dispinterface;
 _GSubclass = interface;
 _GSubclassDisp = dispinterface;
 IEncoder = interface;
 IEncoderDisp = dispinterface;
 _cPlayer = interface;
 _cPlayerDisp = dispinterface;
 __cPlayer = dispinterface;
 _cAudioGraph = interface;
 _cAudioGraphDisp = dispinterface;
 __cAudioGraph = dispinterface;

//Map CoClass to its default interface

 cPlayer = _cPlayer;
 cAudioGraph = _cAudioGraph;
 GSubclass = _GSubclass;

//records, unions, aliases

 OLE_COLOR = LongWord;
 PAudioDeviceDetails = ^AudioDeviceDetails;

 AudioDeviceDetails = packed record
     DeviceName : WideString;
     DeviceDriver : WideString;
     DeviceChannels : Smallint;
     DeviceFormat : Integer;
 end;
 PMP3_Properties = ^MP3_Properties;

 MP3_Properties = packed record
     Mode : MPEGMode;
     VBR : VBRMode;
     BitrateKbps : Integer;
     MaxBitrateKbps : Integer;
     Quality : Integer;
     OutputHz : Integer;
     CopyrightBit : WordBool;
     OriginalBit : WordBool;
     PrivateBit : WordBool;
     Checksum : WordBool;
 end;
 PAPE_Properties = ^APE_Properties;

 APE_Properties = packed record
     CompressionLevel : Integer;
 end;
 PWMA_Properties = ^WMA_Properties;

 WMA_Properties = packed record
     BitrateKbps : Integer;
     OutputHz : Integer;
     OutputChannelCount : Smallint;
 end;
 PWAV_Properties = ^WAV_Properties;

 WAV_Properties = packed record
     FormatTag : Integer;
     OutputChannelCount : Smallint;
     OutputHz : Integer;
     BytesPerSecond : Integer;
     BlockAlign : Smallint;
     BitDepth : Smallint;
 end;
 POGG_Properties = ^OGG_Properties;

 OGG_Properties = packed record
     RateMode : OGG_MODE;
     VorbisQuality : Single;
     BitrateKbps : Integer;
     MinBitrateKbps : Integer;
     MaxBitrateKbps : Integer;
 end;

//interface declarations

// cCallback : A client of a component that converts samples. Declared for implementers; no member of this library takes one.

 cCallback = interface(IDispatch)
   ['{18C99145-FC1D-4A52-A1D7-07A0E8BA86A0}']
    // Samples : Receives one converted 16-bit block: intSamples, interleaved samples, valid only during the call; datalength, length in bytes; channels, number of channels. 
   procedure Samples(var intSamples:PSafeArray;datalength:Integer;channels:Smallint);safecall;
  end;


// cCallback : A client of a component that converts samples. Declared for implementers; no member of this library takes one.

 cCallbackDisp = dispinterface
   ['{18C99145-FC1D-4A52-A1D7-07A0E8BA86A0}']
    // QueryInterface :  
   procedure QueryInterface(var riid:{!! GUID !!} OleVariant;out ppvObj:{!! Ppointer !!} OleVariant);dispid 1610612736;
    // AddRef :  
   function AddRef:LongWord;dispid 1610612737;
    // Release :  
   function Release:LongWord;dispid 1610612738;
    // GetTypeInfoCount :  
   procedure GetTypeInfoCount(out pctinfo:UInt);dispid 1610678272;
    // GetTypeInfo :  
   procedure GetTypeInfo(itinfo:UInt;lcid:LongWord;out pptinfo:{!! Ppointer !!} OleVariant);dispid 1610678273;
    // GetIDsOfNames :  
   procedure GetIDsOfNames(var riid:{!! GUID !!} OleVariant;var rgszNames:{!! PShortInt !!} OleVariant;cNames:UInt;lcid:LongWord;out rgdispid:Integer);dispid 1610678274;
    // Invoke :  
   procedure Invoke(dispidMember:Integer;var riid:{!! GUID !!} OleVariant;lcid:LongWord;wFlags:Word;var pdispparams:{!! DISPPARAMS !!} OleVariant;out pvarResult:OleVariant;out pexcepinfo:{!! EXCEPINFO !!} OleVariant;out puArgErr:UInt);dispid 1610678275;
    // Samples : Receives one converted 16-bit block: intSamples, interleaved samples, valid only during the call; datalength, length in bytes; channels, number of channels. 
   procedure Samples(var intSamples:{!! PSafeArray !!} OleVariant;datalength:Integer;channels:Smallint);dispid 1;
  end;


// ISubclass : A client that receives chosen messages of a subclassed window

 ISubclass = interface(IDispatch)
   ['{09F6F97C-68FB-4816-A1A9-EA30AE0BC32D}']
   function Get_MsgResponse : EMsgResponse; safecall;
   procedure Set_MsgResponse(const result:EMsgResponse); safecall;
    // WindowProc : Handles one message; the result becomes the message's result. 
   function WindowProc(hWnd:Integer;iMsg:Integer;wParam:Integer;lParam:Integer):Integer;safecall;
    // MsgResponse : Whether and when the window's old procedure is called; the client attached first to a message decides. 
   property MsgResponse:EMsgResponse read Get_MsgResponse write Set_MsgResponse;
  end;


// ISubclass : A client that receives chosen messages of a subclassed window

 ISubclassDisp = dispinterface
   ['{09F6F97C-68FB-4816-A1A9-EA30AE0BC32D}']
    // QueryInterface :  
   procedure QueryInterface(var riid:{!! GUID !!} OleVariant;out ppvObj:{!! Ppointer !!} OleVariant);dispid 1610612736;
    // AddRef :  
   function AddRef:LongWord;dispid 1610612737;
    // Release :  
   function Release:LongWord;dispid 1610612738;
    // GetTypeInfoCount :  
   procedure GetTypeInfoCount(out pctinfo:UInt);dispid 1610678272;
    // GetTypeInfo :  
   procedure GetTypeInfo(itinfo:UInt;lcid:LongWord;out pptinfo:{!! Ppointer !!} OleVariant);dispid 1610678273;
    // GetIDsOfNames :  
   procedure GetIDsOfNames(var riid:{!! GUID !!} OleVariant;var rgszNames:{!! PShortInt !!} OleVariant;cNames:UInt;lcid:LongWord;out rgdispid:Integer);dispid 1610678274;
    // Invoke :  
   procedure Invoke(dispidMember:Integer;var riid:{!! GUID !!} OleVariant;lcid:LongWord;wFlags:Word;var pdispparams:{!! DISPPARAMS !!} OleVariant;out pvarResult:OleVariant;out pexcepinfo:{!! EXCEPINFO !!} OleVariant;out puArgErr:UInt);dispid 1610678275;
    // WindowProc : Handles one message; the result becomes the message's result. 
   function WindowProc(hWnd:Integer;iMsg:Integer;wParam:Integer;lParam:Integer):Integer;dispid 2;
    // MsgResponse : Whether and when the window's old procedure is called; the client attached first to a message decides. 
   property MsgResponse:EMsgResponse dispid 1;
  end;


// _GSubclass : Attaches clients to the messages of windows of this process

 _GSubclass = interface(IDispatch)
   ['{A53F21C3-033A-4F1A-8CC4-A1B3DF14D5F3}']
    // AttachMessage : Attaches iwp to message iMsg of window hWnd. Errors: 5, and 0x80040000 + 13081 (can't subclass window), 13082 (already attached), 13083 (no window), 13084 (window of another process). No reference to iwp is kept: detach it before it is destroyed. 
   procedure AttachMessage(var iwp:ISubclass;hWnd:Integer;iMsg:Integer);safecall;
    // DetachMessage : Detaches iwp from message iMsg of window hWnd; does nothing if it is not attached. 
   procedure DetachMessage(var iwp:ISubclass;hWnd:Integer;iMsg:Integer);safecall;
   function Get_CurrentMessage : Integer; safecall;
    // CallOldWindowProc : Calls the procedure that the window had before it was subclassed; returns 0 if none is stored. 
   function CallOldWindowProc(hWnd:Integer;iMsg:Integer;wParam:Integer;lParam:Integer):Integer;safecall;
    // CurrentMessage : The message being dispatched to a client, or the last one dispatched. 
   property CurrentMessage:Integer read Get_CurrentMessage;
  end;


// _GSubclass : Attaches clients to the messages of windows of this process

 _GSubclassDisp = dispinterface
   ['{A53F21C3-033A-4F1A-8CC4-A1B3DF14D5F3}']
    // QueryInterface :  
   procedure QueryInterface(var riid:{!! GUID !!} OleVariant;out ppvObj:{!! Ppointer !!} OleVariant);dispid 1610612736;
    // AddRef :  
   function AddRef:LongWord;dispid 1610612737;
    // Release :  
   function Release:LongWord;dispid 1610612738;
    // GetTypeInfoCount :  
   procedure GetTypeInfoCount(out pctinfo:UInt);dispid 1610678272;
    // GetTypeInfo :  
   procedure GetTypeInfo(itinfo:UInt;lcid:LongWord;out pptinfo:{!! Ppointer !!} OleVariant);dispid 1610678273;
    // GetIDsOfNames :  
   procedure GetIDsOfNames(var riid:{!! GUID !!} OleVariant;var rgszNames:{!! PShortInt !!} OleVariant;cNames:UInt;lcid:LongWord;out rgdispid:Integer);dispid 1610678274;
    // Invoke :  
   procedure Invoke(dispidMember:Integer;var riid:{!! GUID !!} OleVariant;lcid:LongWord;wFlags:Word;var pdispparams:{!! DISPPARAMS !!} OleVariant;out pvarResult:OleVariant;out pexcepinfo:{!! EXCEPINFO !!} OleVariant;out puArgErr:UInt);dispid 1610678275;
    // AttachMessage : Attaches iwp to message iMsg of window hWnd. Errors: 5, and 0x80040000 + 13081 (can't subclass window), 13082 (already attached), 13083 (no window), 13084 (window of another process). No reference to iwp is kept: detach it before it is destroyed. 
   procedure AttachMessage(var iwp:ISubclass;hWnd:Integer;iMsg:Integer);dispid 1;
    // DetachMessage : Detaches iwp from message iMsg of window hWnd; does nothing if it is not attached. 
   procedure DetachMessage(var iwp:ISubclass;hWnd:Integer;iMsg:Integer);dispid 2;
    // CallOldWindowProc : Calls the procedure that the window had before it was subclassed; returns 0 if none is stored. 
   function CallOldWindowProc(hWnd:Integer;iMsg:Integer;wParam:Integer;lParam:Integer):Integer;dispid 4;
    // CurrentMessage : The message being dispatched to a client, or the last one dispatched. 
   property CurrentMessage:Integer  readonly dispid 3;
  end;


// IEncoder : An encoder that writes PCM data to a file: set the tags, call Init, Encode for each block, then DeInit. Declared for implementers, who define all result codes except 0.

 IEncoder = interface(IDispatch)
   ['{5E7AA9D7-4B7B-47D8-BED9-42ACD61BA4DC}']
   procedure Set_Title(const Param1:WideString); safecall;
   function Get_Title : WideString; safecall;
   procedure Set_Album(const Param1:WideString); safecall;
   function Get_Album : WideString; safecall;
   procedure Set_Artist(const Param1:WideString); safecall;
   function Get_Artist : WideString; safecall;
   procedure Set_SongYear(const Param1:WideString); safecall;
   function Get_SongYear : WideString; safecall;
   procedure Set_Genre(const Param1:WideString); safecall;
   function Get_Genre : WideString; safecall;
   procedure Set_Comment(const Param1:WideString); safecall;
   function Get_Comment : WideString; safecall;
   procedure Set_TrackNr(const Param1:WideString); safecall;
   function Get_TrackNr : WideString; safecall;
   procedure Set_EncodedBy(const Param1:WideString); safecall;
   function Get_EncodedBy : WideString; safecall;
   procedure Set_LinkTo(const Param1:WideString); safecall;
   function Get_LinkTo : WideString; safecall;
   procedure Set_Copyright(const Param1:WideString); safecall;
   function Get_Copyright : WideString; safecall;
   procedure Set_Composer(const Param1:WideString); safecall;
   function Get_Composer : WideString; safecall;
   procedure Set_OrigArtist(const Param1:WideString); safecall;
   function Get_OrigArtist : WideString; safecall;
   function Get_BytesProcessed : Double; safecall;
   function Get_Extension : WideString; safecall;
    // DeInit : Finishes and closes the file; returns 0 for success. 
   function DeInit:Integer;safecall;
    // Init : Opens dstFilename for PCM of srcSampleRate Hz, srcChannels and srcBitsPerSample; the implementer defines cbPCMData. Returns 0 for success. 
   function Init(dstFilename:WideString;srcSampleRate:Integer;srcChannels:Smallint;srcBitsPerSample:Smallint;var cbPCMData:Integer):Integer;safecall;
    // Encode : Encodes a block of interleaved PCM: ptr, its address; bytes, its length. Returns 0 for success. 
   function Encode(ptr:Integer;bytes:Integer):Integer;safecall;
    // Title : Title tag; optional 
   property Title:WideString read Get_Title write Set_Title;
    // Album : Album tag; optional 
   property Album:WideString read Get_Album write Set_Album;
    // Artist : Artist tag; optional 
   property Artist:WideString read Get_Artist write Set_Artist;
    // SongYear : Year tag; optional 
   property SongYear:WideString read Get_SongYear write Set_SongYear;
    // Genre : Genre tag; optional 
   property Genre:WideString read Get_Genre write Set_Genre;
    // Comment : Comment tag; optional 
   property Comment:WideString read Get_Comment write Set_Comment;
    // TrackNr : Track number tag; optional 
   property TrackNr:WideString read Get_TrackNr write Set_TrackNr;
    // EncodedBy : Tag that names the person or program that encoded the file; optional 
   property EncodedBy:WideString read Get_EncodedBy write Set_EncodedBy;
    // LinkTo : Link tag; optional 
   property LinkTo:WideString read Get_LinkTo write Set_LinkTo;
    // Copyright : Copyright tag; optional 
   property Copyright:WideString read Get_Copyright write Set_Copyright;
    // Composer : Composer tag; optional 
   property Composer:WideString read Get_Composer write Set_Composer;
    // OrigArtist : Original artist tag; optional 
   property OrigArtist:WideString read Get_OrigArtist write Set_OrigArtist;
    // BytesProcessed : PCM bytes consumed so far 
   property BytesProcessed:Double read Get_BytesProcessed;
    // Extension : File extension that the encoder writes 
   property Extension:WideString read Get_Extension;
  end;


// IEncoder : An encoder that writes PCM data to a file: set the tags, call Init, Encode for each block, then DeInit. Declared for implementers, who define all result codes except 0.

 IEncoderDisp = dispinterface
   ['{5E7AA9D7-4B7B-47D8-BED9-42ACD61BA4DC}']
    // QueryInterface :  
   procedure QueryInterface(var riid:{!! GUID !!} OleVariant;out ppvObj:{!! Ppointer !!} OleVariant);dispid 1610612736;
    // AddRef :  
   function AddRef:LongWord;dispid 1610612737;
    // Release :  
   function Release:LongWord;dispid 1610612738;
    // GetTypeInfoCount :  
   procedure GetTypeInfoCount(out pctinfo:UInt);dispid 1610678272;
    // GetTypeInfo :  
   procedure GetTypeInfo(itinfo:UInt;lcid:LongWord;out pptinfo:{!! Ppointer !!} OleVariant);dispid 1610678273;
    // GetIDsOfNames :  
   procedure GetIDsOfNames(var riid:{!! GUID !!} OleVariant;var rgszNames:{!! PShortInt !!} OleVariant;cNames:UInt;lcid:LongWord;out rgdispid:Integer);dispid 1610678274;
    // Invoke :  
   procedure Invoke(dispidMember:Integer;var riid:{!! GUID !!} OleVariant;lcid:LongWord;wFlags:Word;var pdispparams:{!! DISPPARAMS !!} OleVariant;out pvarResult:OleVariant;out pexcepinfo:{!! EXCEPINFO !!} OleVariant;out puArgErr:UInt);dispid 1610678275;
    // DeInit : Finishes and closes the file; returns 0 for success. 
   function DeInit:Integer;dispid 15;
    // Init : Opens dstFilename for PCM of srcSampleRate Hz, srcChannels and srcBitsPerSample; the implementer defines cbPCMData. Returns 0 for success. 
   function Init(dstFilename:WideString;srcSampleRate:Integer;srcChannels:Smallint;srcBitsPerSample:Smallint;var cbPCMData:Integer):Integer;dispid 16;
    // Encode : Encodes a block of interleaved PCM: ptr, its address; bytes, its length. Returns 0 for success. 
   function Encode(ptr:Integer;bytes:Integer):Integer;dispid 17;
    // Title : Title tag; optional 
   property Title:WideString dispid 1;
    // Album : Album tag; optional 
   property Album:WideString dispid 2;
    // Artist : Artist tag; optional 
   property Artist:WideString dispid 3;
    // SongYear : Year tag; optional 
   property SongYear:WideString dispid 4;
    // Genre : Genre tag; optional 
   property Genre:WideString dispid 5;
    // Comment : Comment tag; optional 
   property Comment:WideString dispid 6;
    // TrackNr : Track number tag; optional 
   property TrackNr:WideString dispid 7;
    // EncodedBy : Tag that names the person or program that encoded the file; optional 
   property EncodedBy:WideString dispid 8;
    // LinkTo : Link tag; optional 
   property LinkTo:WideString dispid 9;
    // Copyright : Copyright tag; optional 
   property Copyright:WideString dispid 10;
    // Composer : Composer tag; optional 
   property Composer:WideString dispid 11;
    // OrigArtist : Original artist tag; optional 
   property OrigArtist:WideString dispid 12;
    // BytesProcessed : PCM bytes consumed so far 
   property BytesProcessed:Double  readonly dispid 13;
    // Extension : File extension that the encoder writes 
   property Extension:WideString  readonly dispid 14;
  end;


// _cPlayer : Plays audio files and CD tracks through wave output

 _cPlayer = interface(IDispatch)
   ['{EDD758A9-B719-4C2C-8AC9-3BF1C7434DF7}']
   function Get_Tag_Title : WideString; safecall;
   procedure Set_Tag_Title(const result:WideString); safecall;
   function Get_Tag_Album : WideString; safecall;
   procedure Set_Tag_Album(const result:WideString); safecall;
   function Get_Tag_Artist : WideString; safecall;
   procedure Set_Tag_Artist(const result:WideString); safecall;
   function Get_Tag_SongYear : WideString; safecall;
   procedure Set_Tag_SongYear(const result:WideString); safecall;
   function Get_Tag_Genre : WideString; safecall;
   procedure Set_Tag_Genre(const result:WideString); safecall;
   function Get_Tag_Comment : WideString; safecall;
   procedure Set_Tag_Comment(const result:WideString); safecall;
   function Get_Tag_TrackNumber : WideString; safecall;
   procedure Set_Tag_TrackNumber(const result:WideString); safecall;
   function Get_Info_Bitrate : Integer; safecall;
   function Get_Info_BitsPerSample : Integer; safecall;
   function Get_Info_Channels : Smallint; safecall;
   function Get_Info_Duration : Double; safecall;
   function Get_Info_Samplerate : Integer; safecall;
    // ErrorTextOut : Returns the message for one of the control's error numbers (-101, -102, -201, -202); empty for any other number, including device results. 
   function ErrorTextOut(lErrNum:Integer):WideString;safecall;
    // PlayPause : Pauses the device; returns the device result, 0 for success. 
   function PlayPause:Integer;safecall;
    // PlayUnPause : Resumes after PlayPause; returns the device result, 0 for success. 
   function PlayUnPause:Integer;safecall;
    // IsPausedOut : True after PlayPause until PlayUnPause or the next start. 
   function IsPausedOut:WordBool;safecall;
    // DonePlay : True if nothing is playing. 
   function DonePlay:WordBool;safecall;
    // About : Shows the library's about box. 
   procedure About;safecall;
    // Init : Prepares the control; call once before anything else. Returns 0. 
   function Init:Integer;safecall;
    // DeInit : Stops playback and releases what Init acquired. Returns 0. 
   function DeInit:Integer;safecall;
   function Get_AudioDataOut : Integer; safecall;
    // PlayStop : Stops playback; DonePlay follows. Returns the device result of the reset, 0 for success or if nothing is playing. 
   function PlayStop:Integer;safecall;
    // PlayStart : Opens sAudioFile and plays it on DeviceIndex (0-based, -1 for the wave mapper); lBufferSize has no effect. Returns 0, -201 while playing, 1, 2 or 3 as OpenAudioFile, 5 when no conversion is possible, or the device result. Errors as OpenAudioFile, and 6 for an impossible format. 
   function PlayStart(sAudioFile:WideString;DeviceIndex:Integer;lBufferSize:Integer):Integer;safecall;
    // GetID3Tags : Fills the Tag_ texts from the opened file; the last three characters of strFile (ogg, mp3, ape, wma, asf) select the tag names. Returns 0. Error 91 without an opened file. 
   function GetID3Tags(strFile:WideString):Integer;safecall;
    // OpenAudioFile : Opens strFile with the source for its extension. Returns 0, 1 (no such file), 2 (format not supported) or 3 (could not be opened); a failure also raises Err. Error 1, 53 or 453 if a decoder library lacks a function or MACDll.dll is missing. 
   function OpenAudioFile(strFile:WideString):Integer;safecall;
    // PositionGet : Position in whole seconds; 0 without an opened file. 
   function PositionGet:Integer;safecall;
    // PositionSet : Seeks to lPosition in whole seconds. Queued sound plays out first; if the end of the file has already been reached, playback still ends. Returns 0, even if the position is out of range. 
   function PositionSet(lPosition:Integer):Integer;safecall;
    // GetSecondsAsTimeString : Formats a number of seconds as h:mm:ss. 
   function GetSecondsAsTimeString(Seconds:Integer):WideString;safecall;
    // IsPlaying : True from a successful PlayStart until the device has closed. 
   function IsPlaying:WordBool;safecall;
    // GetDetailsDevice : Describes device DeviceIndex (0-based); iInOut is 2 for output, otherwise input. Returns the device result, 0 for success. 
   function GetDetailsDevice(DeviceIndex:Integer;iInOut:Integer;var DeviceDetails:AudioDeviceDetails):Integer;safecall;
    // NumOfAudioDevices : Number of devices; iInOut is 1 for input, otherwise output. 
   function NumOfAudioDevices(iInOut:Integer):Integer;safecall;
   function Get_Volume : Integer; safecall;
   procedure Set_Volume(const result:Integer); safecall;
   function Get_Mute : WordBool; safecall;
   procedure Set_Mute(const result:WordBool); safecall;
   function Get_Balance : Integer; safecall;
   procedure Set_Balance(const result:Integer); safecall;
   function Get_EqualizerGain(Band:Integer) : Single; safecall;
   procedure Set_EqualizerGain(const Band:Integer; const parEqualizerGain:Single); safecall;
   function Get_Looping : WordBool; safecall;
   procedure Set_Looping(const result:WordBool); safecall;
   function Get_NextFile : WideString; safecall;
   procedure Set_NextFile(const result:WideString); safecall;
   function Get_PositionMs : Integer; safecall;
   procedure Set_PositionMs(const result:Integer); safecall;
   function Get_DurationMs : Integer; safecall;
   function Get_State : PlayState; safecall;
   function Get_PositionInterval : Integer; safecall;
   procedure Set_PositionInterval(const result:Integer); safecall;
   function Get_Device : WideString; safecall;
   procedure Set_Device(const result:WideString); safecall;
   function Get_Recover : WordBool; safecall;
   procedure Set_Recover(const result:WordBool); safecall;
   function Get_CleanEnd : WordBool; safecall;
   procedure Set_CleanEnd(const result:WordBool); safecall;
   function Get_Level(Channel:Integer) : Integer; safecall;
   function Get_FormatName : WideString; safecall;
   function Get_Extensions : WideString; safecall;
   function Get_TagText(Name:WideString) : WideString; safecall;
   function Get_TagCount : Integer; safecall;
   function Get_TagName(Index:Integer) : WideString; safecall;
   function Get_Picture : IPictureDisp; safecall;
    // Tag_Title : Title text, filled by GetID3Tags 
   property Tag_Title:WideString read Get_Tag_Title write Set_Tag_Title;
    // Tag_Album : Album text, filled by GetID3Tags 
   property Tag_Album:WideString read Get_Tag_Album write Set_Tag_Album;
    // Tag_Artist : Artist text, filled by GetID3Tags 
   property Tag_Artist:WideString read Get_Tag_Artist write Set_Tag_Artist;
    // Tag_SongYear : Year text, filled by GetID3Tags 
   property Tag_SongYear:WideString read Get_Tag_SongYear write Set_Tag_SongYear;
    // Tag_Genre : Genre text, filled by GetID3Tags 
   property Tag_Genre:WideString read Get_Tag_Genre write Set_Tag_Genre;
    // Tag_Comment : Comment text, filled by GetID3Tags 
   property Tag_Comment:WideString read Get_Tag_Comment write Set_Tag_Comment;
    // Tag_TrackNumber : Track number text, filled by GetID3Tags 
   property Tag_TrackNumber:WideString read Get_Tag_TrackNumber write Set_Tag_TrackNumber;
    // Info_Bitrate : Bits per second of the opened file as stored; bytes per second of libsndfile's formats. Error 91 without an opened file. 
   property Info_Bitrate:Integer read Get_Info_Bitrate;
    // Info_BitsPerSample : Bits in one sample: as stored for wav and ape, else 16. Error 91 without an opened file. 
   property Info_BitsPerSample:Integer read Get_Info_BitsPerSample;
    // Info_Channels : Number of channels of the opened file. Error 91 without an opened file. 
   property Info_Channels:Smallint read Get_Info_Channels;
    // Info_Duration : Length of the opened file in seconds, with fraction. Error 91 without an opened file. 
   property Info_Duration:Double read Get_Info_Duration;
    // Info_Samplerate : Sample rate of the opened file in Hz. Error 91 without an opened file. 
   property Info_Samplerate:Integer read Get_Info_Samplerate;
    // AudioDataOut : Address of the samples last sent to the device, for the graph control's SetAudioData: 8000 bytes, before the first block 2048, before the first playback 0. Changes with every block: read it anew each time. 
   property AudioDataOut:Integer read Get_AudioDataOut;
    // Volume : Loudness from 0 to 100; the amplitude is the square of Volume / 100. 100 (default) leaves every sample alone. Error 380 out of range. 
   property Volume:Integer read Get_Volume write Set_Volume;
    // Mute : True: silence, while the playback goes on. Default False 
   property Mute:WordBool read Get_Mute write Set_Mute;
    // Balance : From -100, left alone, over 0 (default), both, to 100, right alone. No effect on mono. Error 380 out of range. 
   property Balance:Integer read Get_Balance write Set_Balance;
    // EqualizerGain : Gain of Band, 1 to 10 (31.25 Hz to 16 kHz, an octave apart), in decibels from -12 to 12; default 0. Error 380 out of range. 
   property EqualizerGain[Band:Integer]:Single read Get_EqualizerGain write Set_EqualizerGain;
    // Looping : True: the file begins again at its end, without a gap. Default False 
   property Looping:WordBool read Get_Looping write Set_Looping;
    // NextFile : The file that follows the one that plays, without a gap if rate and channels are the same. Empty again when it starts (NextStarted). 
   property NextFile:WideString read Get_NextFile write Set_NextFile;
    // PositionMs : Milliseconds of the file that are heard now; 0 when nothing plays. Setting it jumps there at once. Error 380 outside of 0 to DurationMs, 5 if the file cannot be positioned. 
   property PositionMs:Integer read Get_PositionMs write Set_PositionMs;
    // DurationMs : Length in milliseconds of the file that plays, otherwise of the opened one; 0 without one 
   property DurationMs:Integer read Get_DurationMs;
    // State : What the player does: 0 stopped, 1 playing, 2 paused 
   property State:PlayState read Get_State;
    // PositionInterval : Milliseconds between two PositionChanged while something plays; 0 (default): none. Error 380 outside of 0 to 3600000. 
   property PositionInterval:Integer read Get_PositionInterval write Set_PositionInterval;
    // Device : Output device by its name as GetDetailsDevice gives it, for PlayStart with DeviceIndex -1; empty (default): the system's choice. PlayStart returns 2 if there is none of that name. 
   property Device:WideString read Get_Device write Set_Device;
    // Recover : True: when the device is lost, the playback goes on on the system's choice. Default False 
   property Recover:WordBool read Get_Recover write Set_Recover;
    // CleanEnd : True: nothing but the file is heard, and silence to the end of the last block. Default False 
   property CleanEnd:WordBool read Get_CleanEnd write Set_CleanEnd;
    // Level : Peak of what is heard now in Channel 1 (left) or 2, from 0 to 100. Error 380 for another channel. 
   property Level[Channel:Integer]:Integer read Get_Level;
    // FormatName : Format of the opened file in words, by what it holds (FLAC, 24 bits); empty without one 
   property FormatName:WideString read Get_FormatName;
    // Extensions : Patterns of all files that can be played, for a file dialog: *.wav;*.mp3 and so on 
   property Extensions:WideString read Get_Extensions;
    // TagText : Text of the tag Name (TITLE, ARTIST, ALBUM, DATE, GENRE, TRACKNUMBER, COMMENT ..., without regard to case) of the opened file; several values are joined by a semicolon. Empty without such a tag. 
   property TagText[Name:WideString]:WideString read Get_TagText;
    // TagCount : Number of tags of the opened file; 0 without one 
   property TagCount:Integer read Get_TagCount;
    // TagName : Name of tag Index, 1 to TagCount, for TagText. Error 380 out of range. 
   property TagName[Index:Integer]:WideString read Get_TagName;
    // Picture : Cover of the opened file; Nothing without one 
   property Picture:IPictureDisp read Get_Picture;
  end;


// _cPlayer : Plays audio files and CD tracks through wave output

 _cPlayerDisp = dispinterface
   ['{EDD758A9-B719-4C2C-8AC9-3BF1C7434DF7}']
    // QueryInterface :  
   procedure QueryInterface(var riid:{!! GUID !!} OleVariant;out ppvObj:{!! Ppointer !!} OleVariant);dispid 1610612736;
    // AddRef :  
   function AddRef:LongWord;dispid 1610612737;
    // Release :  
   function Release:LongWord;dispid 1610612738;
    // GetTypeInfoCount :  
   procedure GetTypeInfoCount(out pctinfo:UInt);dispid 1610678272;
    // GetTypeInfo :  
   procedure GetTypeInfo(itinfo:UInt;lcid:LongWord;out pptinfo:{!! Ppointer !!} OleVariant);dispid 1610678273;
    // GetIDsOfNames :  
   procedure GetIDsOfNames(var riid:{!! GUID !!} OleVariant;var rgszNames:{!! PShortInt !!} OleVariant;cNames:UInt;lcid:LongWord;out rgdispid:Integer);dispid 1610678274;
    // Invoke :  
   procedure Invoke(dispidMember:Integer;var riid:{!! GUID !!} OleVariant;lcid:LongWord;wFlags:Word;var pdispparams:{!! DISPPARAMS !!} OleVariant;out pvarResult:OleVariant;out pexcepinfo:{!! EXCEPINFO !!} OleVariant;out puArgErr:UInt);dispid 1610678275;
    // ErrorTextOut : Returns the message for one of the control's error numbers (-101, -102, -201, -202); empty for any other number, including device results. 
   function ErrorTextOut(lErrNum:Integer):WideString;dispid 13;
    // PlayPause : Pauses the device; returns the device result, 0 for success. 
   function PlayPause:Integer;dispid 14;
    // PlayUnPause : Resumes after PlayPause; returns the device result, 0 for success. 
   function PlayUnPause:Integer;dispid 15;
    // IsPausedOut : True after PlayPause until PlayUnPause or the next start. 
   function IsPausedOut:WordBool;dispid 16;
    // DonePlay : True if nothing is playing. 
   function DonePlay:WordBool;dispid 17;
    // About : Shows the library's about box. 
   procedure About;dispid -552;
    // Init : Prepares the control; call once before anything else. Returns 0. 
   function Init:Integer;dispid 19;
    // DeInit : Stops playback and releases what Init acquired. Returns 0. 
   function DeInit:Integer;dispid 20;
    // PlayStop : Stops playback; DonePlay follows. Returns the device result of the reset, 0 for success or if nothing is playing. 
   function PlayStop:Integer;dispid 22;
    // PlayStart : Opens sAudioFile and plays it on DeviceIndex (0-based, -1 for the wave mapper); lBufferSize has no effect. Returns 0, -201 while playing, 1, 2 or 3 as OpenAudioFile, 5 when no conversion is possible, or the device result. Errors as OpenAudioFile, and 6 for an impossible format. 
   function PlayStart(sAudioFile:WideString;DeviceIndex:Integer;lBufferSize:Integer):Integer;dispid 23;
    // GetID3Tags : Fills the Tag_ texts from the opened file; the last three characters of strFile (ogg, mp3, ape, wma, asf) select the tag names. Returns 0. Error 91 without an opened file. 
   function GetID3Tags(strFile:WideString):Integer;dispid 24;
    // OpenAudioFile : Opens strFile with the source for its extension. Returns 0, 1 (no such file), 2 (format not supported) or 3 (could not be opened); a failure also raises Err. Error 1, 53 or 453 if a decoder library lacks a function or MACDll.dll is missing. 
   function OpenAudioFile(strFile:WideString):Integer;dispid 25;
    // PositionGet : Position in whole seconds; 0 without an opened file. 
   function PositionGet:Integer;dispid 26;
    // PositionSet : Seeks to lPosition in whole seconds. Queued sound plays out first; if the end of the file has already been reached, playback still ends. Returns 0, even if the position is out of range. 
   function PositionSet(lPosition:Integer):Integer;dispid 27;
    // GetSecondsAsTimeString : Formats a number of seconds as h:mm:ss. 
   function GetSecondsAsTimeString(Seconds:Integer):WideString;dispid 28;
    // IsPlaying : True from a successful PlayStart until the device has closed. 
   function IsPlaying:WordBool;dispid 29;
    // GetDetailsDevice : Describes device DeviceIndex (0-based); iInOut is 2 for output, otherwise input. Returns the device result, 0 for success. 
   function GetDetailsDevice(DeviceIndex:Integer;iInOut:Integer;var DeviceDetails:{!! AudioDeviceDetails !!} OleVariant):Integer;dispid 30;
    // NumOfAudioDevices : Number of devices; iInOut is 1 for input, otherwise output. 
   function NumOfAudioDevices(iInOut:Integer):Integer;dispid 31;
    // Tag_Title : Title text, filled by GetID3Tags 
   property Tag_Title:WideString dispid 1;
    // Tag_Album : Album text, filled by GetID3Tags 
   property Tag_Album:WideString dispid 2;
    // Tag_Artist : Artist text, filled by GetID3Tags 
   property Tag_Artist:WideString dispid 3;
    // Tag_SongYear : Year text, filled by GetID3Tags 
   property Tag_SongYear:WideString dispid 4;
    // Tag_Genre : Genre text, filled by GetID3Tags 
   property Tag_Genre:WideString dispid 5;
    // Tag_Comment : Comment text, filled by GetID3Tags 
   property Tag_Comment:WideString dispid 6;
    // Tag_TrackNumber : Track number text, filled by GetID3Tags 
   property Tag_TrackNumber:WideString dispid 7;
    // Info_Bitrate : Bits per second of the opened file as stored; bytes per second of libsndfile's formats. Error 91 without an opened file. 
   property Info_Bitrate:Integer  readonly dispid 8;
    // Info_BitsPerSample : Bits in one sample: as stored for wav and ape, else 16. Error 91 without an opened file. 
   property Info_BitsPerSample:Integer  readonly dispid 9;
    // Info_Channels : Number of channels of the opened file. Error 91 without an opened file. 
   property Info_Channels:Smallint  readonly dispid 10;
    // Info_Duration : Length of the opened file in seconds, with fraction. Error 91 without an opened file. 
   property Info_Duration:Double  readonly dispid 11;
    // Info_Samplerate : Sample rate of the opened file in Hz. Error 91 without an opened file. 
   property Info_Samplerate:Integer  readonly dispid 12;
    // AudioDataOut : Address of the samples last sent to the device, for the graph control's SetAudioData: 8000 bytes, before the first block 2048, before the first playback 0. Changes with every block: read it anew each time. 
   property AudioDataOut:Integer  readonly dispid 21;
    // Volume : Loudness from 0 to 100; the amplitude is the square of Volume / 100. 100 (default) leaves every sample alone. Error 380 out of range. 
   property Volume:Integer dispid 32;
    // Mute : True: silence, while the playback goes on. Default False 
   property Mute:WordBool dispid 33;
    // Balance : From -100, left alone, over 0 (default), both, to 100, right alone. No effect on mono. Error 380 out of range. 
   property Balance:Integer dispid 34;
    // EqualizerGain : Gain of Band, 1 to 10 (31.25 Hz to 16 kHz, an octave apart), in decibels from -12 to 12; default 0. Error 380 out of range. 
   property EqualizerGain[Band:Integer]:Single dispid 35;
    // Looping : True: the file begins again at its end, without a gap. Default False 
   property Looping:WordBool dispid 36;
    // NextFile : The file that follows the one that plays, without a gap if rate and channels are the same. Empty again when it starts (NextStarted). 
   property NextFile:WideString dispid 37;
    // PositionMs : Milliseconds of the file that are heard now; 0 when nothing plays. Setting it jumps there at once. Error 380 outside of 0 to DurationMs, 5 if the file cannot be positioned. 
   property PositionMs:Integer dispid 38;
    // DurationMs : Length in milliseconds of the file that plays, otherwise of the opened one; 0 without one 
   property DurationMs:Integer  readonly dispid 39;
    // State : What the player does: 0 stopped, 1 playing, 2 paused 
   property State:PlayState  readonly dispid 40;
    // PositionInterval : Milliseconds between two PositionChanged while something plays; 0 (default): none. Error 380 outside of 0 to 3600000. 
   property PositionInterval:Integer dispid 41;
    // Device : Output device by its name as GetDetailsDevice gives it, for PlayStart with DeviceIndex -1; empty (default): the system's choice. PlayStart returns 2 if there is none of that name. 
   property Device:WideString dispid 42;
    // Recover : True: when the device is lost, the playback goes on on the system's choice. Default False 
   property Recover:WordBool dispid 43;
    // CleanEnd : True: nothing but the file is heard, and silence to the end of the last block. Default False 
   property CleanEnd:WordBool dispid 44;
    // Level : Peak of what is heard now in Channel 1 (left) or 2, from 0 to 100. Error 380 for another channel. 
   property Level[Channel:Integer]:Integer  readonly dispid 45;
    // FormatName : Format of the opened file in words, by what it holds (FLAC, 24 bits); empty without one 
   property FormatName:WideString  readonly dispid 46;
    // Extensions : Patterns of all files that can be played, for a file dialog: *.wav;*.mp3 and so on 
   property Extensions:WideString  readonly dispid 47;
    // TagText : Text of the tag Name (TITLE, ARTIST, ALBUM, DATE, GENRE, TRACKNUMBER, COMMENT ..., without regard to case) of the opened file; several values are joined by a semicolon. Empty without such a tag. 
   property TagText[Name:WideString]:WideString  readonly dispid 48;
    // TagCount : Number of tags of the opened file; 0 without one 
   property TagCount:Integer  readonly dispid 49;
    // TagName : Name of tag Index, 1 to TagCount, for TagText. Error 380 out of range. 
   property TagName[Index:Integer]:WideString  readonly dispid 50;
    // Picture : Cover of the opened file; Nothing without one 
   property Picture:IPictureDisp  readonly dispid 51;
  end;


// __cPlayer : Events of cPlayer

 __cPlayer = dispinterface
   ['{02D68996-3A43-464D-AEA2-E18E58BAD704}']
    // DonePlay : Raised at the end of the file or after PlayStop: playback has ended and the device is closed. 
   procedure DonePlay;dispid 1;
    // Err : A failure inside the control: FunctionName, where it occurred, often with the platform function that failed; ErrorNumber; ErrorDecription, the description in words. 
   procedure Err(FunctionName:WideString;var ErrorNumber:Integer;ErrorDecription:WideString);dispid 2;
    // Ended : A playback has ended; raised exactly once for every successful PlayStart. Reason: 0 finished, 1 stopped, 2 the device was lost, 3 an error. 
   procedure Ended(Reason:PlayEndReason);dispid 3;
    // StateChanged : State has changed. 
   procedure StateChanged(State:PlayState);dispid 4;
    // PositionChanged : Raised every PositionInterval milliseconds while something plays, with the position that is heard. 
   procedure PositionChanged(PositionMs:Integer);dispid 5;
    // NextStarted : NextFile, named File, has begun to be heard. 
   procedure NextStarted(File_:WideString);dispid 6;
  end;


// _cAudioGraph : Draws the waveform or the spectrum of a block of samples

 _cAudioGraph = interface(IDispatch)
   ['{FCF2B35E-7D2D-46F4-AE38-A9D77CC380A3}']
   function Get_GraphStyle : AudioGraphStyle; safecall;
   procedure Set_GraphStyle(const result:AudioGraphStyle); safecall;
   function Get_Bands : Integer; safecall;
   procedure Set_Bands(const result:Integer); safecall;
   function Get_BandsSpace : Integer; safecall;
   procedure Set_BandsSpace(const result:Integer); safecall;
   function Get_BandsWidth : Integer; safecall;
   procedure Set_BandsWidth(const result:Integer); safecall;
   function Get_BackgroundColor : OLE_COLOR; safecall;
   procedure Set_BackgroundColor(const result:OLE_COLOR); safecall;
   function Get_AmplitudeColor : OLE_COLOR; safecall;
   procedure Set_AmplitudeColor(const result:OLE_COLOR); safecall;
   function Get_FreqColor : OLE_COLOR; safecall;
   procedure Set_FreqColor(const result:OLE_COLOR); safecall;
   function Get_BorderStyle : BorderStyle; safecall;
   procedure Set_BorderStyle(const result:BorderStyle); safecall;
   function Get_hWnd : Integer; safecall;
    // SetAudioData : Reads samples from the address pAudioData (cPlayer's AudioDataOut; 1023 readable bytes of 16-bit samples) and raises LevelChanged. Returns 0. Error 5 if the memory is not readable. 
   function SetAudioData(pAudioData:Integer):Integer;safecall;
    // Display : Draws the samples in the current style. Pumps pending window messages meanwhile. 
   procedure Display;safecall;
    // ClearGraph : Clears the picture. Returns 0. 
   function ClearGraph:Integer;safecall;
    // Init : Has no effect; for hosts that call Init on every control. Returns 0. 
   function Init:Integer;safecall;
    // DeInit : Has no effect; the counterpart of Init. Returns 0. 
   function DeInit:Integer;safecall;
   function Get_Player : IDispatch; safecall;
   procedure Set_Player(const result:IDispatch); safecall;
   procedure Set_Player_(const result:IDispatch); safecall;
   function Get_FramesPerSecond : Integer; safecall;
   procedure Set_FramesPerSecond(const result:Integer); safecall;
   function Get_LevelScale : AudioGraphLevelScale; safecall;
   procedure Set_LevelScale(const result:AudioGraphLevelScale); safecall;
   function Get_FrequencyAxis : AudioGraphFrequencyAxis; safecall;
   procedure Set_FrequencyAxis(const result:AudioGraphFrequencyAxis); safecall;
   function Get_PeakHold : WordBool; safecall;
   procedure Set_PeakHold(const result:WordBool); safecall;
   function Get_ChannelWaveforms : WordBool; safecall;
   procedure Set_ChannelWaveforms(const result:WordBool); safecall;
    // GraphStyle : What Display draws: 0 the waveform, 1 (default) the spectrum 
   property GraphStyle:AudioGraphStyle read Get_GraphStyle write Set_GraphStyle;
    // Bands : Number of bands of the spectrum; default 50 
   property Bands:Integer read Get_Bands write Set_Bands;
    // BandsSpace : Gap between two bands in pixels; default 1 
   property BandsSpace:Integer read Get_BandsSpace write Set_BandsSpace;
    // BandsWidth : Width of a band in pixels; default 3 
   property BandsWidth:Integer read Get_BandsWidth write Set_BandsWidth;
    // BackgroundColor : Colour of the background (0x00BBGGRR or a system colour); default black 
   property BackgroundColor:OLE_COLOR read Get_BackgroundColor write Set_BackgroundColor;
    // AmplitudeColor : Colour of the waveform (0x00BBGGRR or a system colour); default green 
   property AmplitudeColor:OLE_COLOR read Get_AmplitudeColor write Set_AmplitudeColor;
    // FreqColor : Colour of the bands (0x00BBGGRR or a system colour); default green 
   property FreqColor:OLE_COLOR read Get_FreqColor write Set_FreqColor;
    // BorderStyle : Border of the control: 0 (default) none, 1 a fixed line 
   property BorderStyle:BorderStyle read Get_BorderStyle write Set_BorderStyle;
    // hWnd : Window handle of the control 
   property hWnd:Integer read Get_hWnd;
    // Player : The cPlayer whose samples the control takes and draws by itself; Nothing (default) for none. The control does not keep the player alive. 
   property Player:IDispatch read Get_Player write Set_Player;
    // FramesPerSecond : Pictures a second while the control follows a Player, 1 to 100; default 30 
   property FramesPerSecond:Integer read Get_FramesPerSecond write Set_FramesPerSecond;
    // LevelScale : Scale of the bars: 0 (default) linear, 1 decibels from -60 to full scale 
   property LevelScale:AudioGraphLevelScale read Get_LevelScale write Set_LevelScale;
    // FrequencyAxis : What the bars divide evenly: 0 (default) bands of the transform, 1 octaves from 20 Hz to 20 kHz 
   property FrequencyAxis:AudioGraphFrequencyAxis read Get_FrequencyAxis write Set_FrequencyAxis;
    // PeakHold : Whether a mark stays at each bar's highest level for a second; default False 
   property PeakHold:WordBool read Get_PeakHold write Set_PeakHold;
    // ChannelWaveforms : Whether the waveform of each channel is drawn by itself, one below the other; default False 
   property ChannelWaveforms:WordBool read Get_ChannelWaveforms write Set_ChannelWaveforms;
  end;


// _cAudioGraph : Draws the waveform or the spectrum of a block of samples

 _cAudioGraphDisp = dispinterface
   ['{FCF2B35E-7D2D-46F4-AE38-A9D77CC380A3}']
    // QueryInterface :  
   procedure QueryInterface(var riid:{!! GUID !!} OleVariant;out ppvObj:{!! Ppointer !!} OleVariant);dispid 1610612736;
    // AddRef :  
   function AddRef:LongWord;dispid 1610612737;
    // Release :  
   function Release:LongWord;dispid 1610612738;
    // GetTypeInfoCount :  
   procedure GetTypeInfoCount(out pctinfo:UInt);dispid 1610678272;
    // GetTypeInfo :  
   procedure GetTypeInfo(itinfo:UInt;lcid:LongWord;out pptinfo:{!! Ppointer !!} OleVariant);dispid 1610678273;
    // GetIDsOfNames :  
   procedure GetIDsOfNames(var riid:{!! GUID !!} OleVariant;var rgszNames:{!! PShortInt !!} OleVariant;cNames:UInt;lcid:LongWord;out rgdispid:Integer);dispid 1610678274;
    // Invoke :  
   procedure Invoke(dispidMember:Integer;var riid:{!! GUID !!} OleVariant;lcid:LongWord;wFlags:Word;var pdispparams:{!! DISPPARAMS !!} OleVariant;out pvarResult:OleVariant;out pexcepinfo:{!! EXCEPINFO !!} OleVariant;out puArgErr:UInt);dispid 1610678275;
    // SetAudioData : Reads samples from the address pAudioData (cPlayer's AudioDataOut; 1023 readable bytes of 16-bit samples) and raises LevelChanged. Returns 0. Error 5 if the memory is not readable. 
   function SetAudioData(pAudioData:Integer):Integer;dispid 10;
    // Display : Draws the samples in the current style. Pumps pending window messages meanwhile. 
   procedure Display;dispid 11;
    // ClearGraph : Clears the picture. Returns 0. 
   function ClearGraph:Integer;dispid 12;
    // Init : Has no effect; for hosts that call Init on every control. Returns 0. 
   function Init:Integer;dispid 13;
    // DeInit : Has no effect; the counterpart of Init. Returns 0. 
   function DeInit:Integer;dispid 14;
    // GraphStyle : What Display draws: 0 the waveform, 1 (default) the spectrum 
   property GraphStyle:AudioGraphStyle dispid 1;
    // Bands : Number of bands of the spectrum; default 50 
   property Bands:Integer dispid 2;
    // BandsSpace : Gap between two bands in pixels; default 1 
   property BandsSpace:Integer dispid 3;
    // BandsWidth : Width of a band in pixels; default 3 
   property BandsWidth:Integer dispid 4;
    // BackgroundColor : Colour of the background (0x00BBGGRR or a system colour); default black 
   property BackgroundColor:OLE_COLOR dispid 5;
    // AmplitudeColor : Colour of the waveform (0x00BBGGRR or a system colour); default green 
   property AmplitudeColor:OLE_COLOR dispid 6;
    // FreqColor : Colour of the bands (0x00BBGGRR or a system colour); default green 
   property FreqColor:OLE_COLOR dispid 7;
    // BorderStyle : Border of the control: 0 (default) none, 1 a fixed line 
   property BorderStyle:BorderStyle dispid 8;
    // hWnd : Window handle of the control 
   property hWnd:Integer  readonly dispid -515;
    // Player : The cPlayer whose samples the control takes and draws by itself; Nothing (default) for none. The control does not keep the player alive. 
   property Player:IDispatch dispid 15;
    // FramesPerSecond : Pictures a second while the control follows a Player, 1 to 100; default 30 
   property FramesPerSecond:Integer dispid 16;
    // LevelScale : Scale of the bars: 0 (default) linear, 1 decibels from -60 to full scale 
   property LevelScale:AudioGraphLevelScale dispid 17;
    // FrequencyAxis : What the bars divide evenly: 0 (default) bands of the transform, 1 octaves from 20 Hz to 20 kHz 
   property FrequencyAxis:AudioGraphFrequencyAxis dispid 18;
    // PeakHold : Whether a mark stays at each bar's highest level for a second; default False 
   property PeakHold:WordBool dispid 19;
    // ChannelWaveforms : Whether the waveform of each channel is drawn by itself, one below the other; default False 
   property ChannelWaveforms:WordBool dispid 20;
  end;


// __cAudioGraph : Events of cAudioGraph

 __cAudioGraph = dispinterface
   ['{AA7367AD-F18B-4249-BD89-FA81086837C5}']
    // LevelChanged : SetAudioData has read new samples; Level is the loudness of the lowest bands, 0 to 100, as of the last Display. 
   procedure LevelChanged(Level:Integer);dispid 1;
  end;

//CoClasses
  T__cPlayerDonePlay = procedure(Sender: TObject) of object;
  T__cPlayerErr = procedure(Sender: TObject;FunctionName:WideString;var ErrorNumber:Integer;ErrorDecription:WideString) of object;
  T__cPlayerEnded = procedure(Sender: TObject;Reason:PlayEndReason) of object;
  T__cPlayerStateChanged = procedure(Sender: TObject;State:PlayState) of object;
  T__cPlayerPositionChanged = procedure(Sender: TObject;PositionMs:Integer) of object;
  T__cPlayerNextStarted = procedure(Sender: TObject;File_:WideString) of object;


  CocPlayer = Class
  Public
    Class Function Create: _cPlayer;
    Class Function CreateRemote(const MachineName: string): _cPlayer;
  end;

  TEvscPlayer = Class(TEventSink)
  Private
    FOnDonePlay:T__cPlayerDonePlay;
    FOnErr:T__cPlayerErr;
    FOnEnded:T__cPlayerEnded;
    FOnStateChanged:T__cPlayerStateChanged;
    FOnPositionChanged:T__cPlayerPositionChanged;
    FOnNextStarted:T__cPlayerNextStarted;

    fServer:_cPlayer;
    procedure EventSinkInvoke(Sender: TObject; DispID: Integer;
          const IID: TGUID; LocaleID: Integer; Flags: Word;
          Params: tagDISPPARAMS; VarResult, ExcepInfo, ArgErr: Pointer);
  Public
    constructor Create(TheOwner: TComponent); override;
    property ComServer:_cPlayer read fServer;
    property OnDonePlay : T__cPlayerDonePlay read FOnDonePlay write FOnDonePlay;
    property OnErr : T__cPlayerErr read FOnErr write FOnErr;
    property OnEnded : T__cPlayerEnded read FOnEnded write FOnEnded;
    property OnStateChanged : T__cPlayerStateChanged read FOnStateChanged write FOnStateChanged;
    property OnPositionChanged : T__cPlayerPositionChanged read FOnPositionChanged write FOnPositionChanged;
    property OnNextStarted : T__cPlayerNextStarted read FOnNextStarted write FOnNextStarted;

  end;

  T__cAudioGraphLevelChanged = procedure(Sender: TObject;Level:Integer) of object;


  CocAudioGraph = Class
  Public
    Class Function Create: _cAudioGraph;
    Class Function CreateRemote(const MachineName: string): _cAudioGraph;
  end;

  TEvscAudioGraph = Class(TEventSink)
  Private
    FOnLevelChanged:T__cAudioGraphLevelChanged;

    fServer:_cAudioGraph;
    procedure EventSinkInvoke(Sender: TObject; DispID: Integer;
          const IID: TGUID; LocaleID: Integer; Flags: Word;
          Params: tagDISPPARAMS; VarResult, ExcepInfo, ArgErr: Pointer);
  Public
    constructor Create(TheOwner: TComponent); override;
    property ComServer:_cAudioGraph read fServer;
    property OnLevelChanged : T__cAudioGraphLevelChanged read FOnLevelChanged write FOnLevelChanged;

  end;

  CoGSubclass = Class
  Public
    Class Function Create: _GSubclass;
    Class Function CreateRemote(const MachineName: string): _GSubclass;
  end;

implementation

uses comobj;

Class Function CocPlayer.Create: _cPlayer;
begin
  Result := CreateComObject(CLASS_cPlayer) as _cPlayer;
end;

Class Function CocPlayer.CreateRemote(const MachineName: string): _cPlayer;
begin
  Result := CreateRemoteComObject(MachineName,CLASS_cPlayer) as _cPlayer;
end;

constructor TEvscPlayer.Create(TheOwner: TComponent);
begin
  inherited Create(TheOwner);
  OnInvoke:=EventSinkInvoke;
  fServer:=CocPlayer.Create;
  Connect(fServer,__cPlayer);
end;

procedure TEvscPlayer.EventSinkInvoke(Sender: TObject; DispID: Integer;
  const IID: TGUID; LocaleID: Integer; Flags: Word; Params: tagDISPPARAMS;
  VarResult, ExcepInfo, ArgErr: Pointer);
begin
  case DispID of
    1: if assigned(OnDonePlay) then
          OnDonePlay(Self);
    2: if assigned(OnErr) then
          OnErr(Self, OleVariant(Params.rgvarg[2]), Params.rgvarg[1].plVal^, OleVariant(Params.rgvarg[0]));
    3: if assigned(OnEnded) then
          OnEnded(Self, OleVariant(Params.rgvarg[0]));
    4: if assigned(OnStateChanged) then
          OnStateChanged(Self, OleVariant(Params.rgvarg[0]));
    5: if assigned(OnPositionChanged) then
          OnPositionChanged(Self, OleVariant(Params.rgvarg[0]));
    6: if assigned(OnNextStarted) then
          OnNextStarted(Self, OleVariant(Params.rgvarg[0]));

  end;
end;

Class Function CocAudioGraph.Create: _cAudioGraph;
begin
  Result := CreateComObject(CLASS_cAudioGraph) as _cAudioGraph;
end;

Class Function CocAudioGraph.CreateRemote(const MachineName: string): _cAudioGraph;
begin
  Result := CreateRemoteComObject(MachineName,CLASS_cAudioGraph) as _cAudioGraph;
end;

constructor TEvscAudioGraph.Create(TheOwner: TComponent);
begin
  inherited Create(TheOwner);
  OnInvoke:=EventSinkInvoke;
  fServer:=CocAudioGraph.Create;
  Connect(fServer,__cAudioGraph);
end;

procedure TEvscAudioGraph.EventSinkInvoke(Sender: TObject; DispID: Integer;
  const IID: TGUID; LocaleID: Integer; Flags: Word; Params: tagDISPPARAMS;
  VarResult, ExcepInfo, ArgErr: Pointer);
begin
  case DispID of
    1: if assigned(OnLevelChanged) then
          OnLevelChanged(Self, OleVariant(Params.rgvarg[0]));

  end;
end;

Class Function CoGSubclass.Create: _GSubclass;
begin
  Result := CreateComObject(CLASS_GSubclass) as _GSubclass;
end;

Class Function CoGSubclass.CreateRemote(const MachineName: string): _GSubclass;
begin
  Result := CreateRemoteComObject(MachineName,CLASS_GSubclass) as _GSubclass;
end;

end.
