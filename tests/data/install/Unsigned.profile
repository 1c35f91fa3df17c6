<?xml version="1.0" encoding="UTF-8"?>
<!DOCTYPE plist PUBLIC "-//Apple//DTD PLIST 1.0//EN" "http://www.apple.com/DTDs/PropertyList-1.0.dtd">
<plist version="1.0">
<dict>
	<key>PayloadContent</key>
	<array>
		<dict>
			<key>PayloadDisplayName</key>
			<string>Screen Saver</string>
			<key>PayloadIdentifier</key>
			<string>com.example.screensaver.5C4E1F0A</string>
			<key>PayloadType</key>
			<string>com.apple.screensaver</string>
			<key>PayloadUUID</key>
			<string>5C4E1F0A-7D1B-4C47-9A52-2E0B8F7A61C3</string>
			<key>PayloadVersion</key>
			<integer>1</integer>
			<key>idleTime</key>
			<integer>300</integer>
		</dict>
	</array>
	<key>PayloadDisplayName</key>
	<string>Screen saver after five minutes</string>
	<key>PayloadIdentifier</key>
	<string>com.example.screensaver</string>
	<key>PayloadType</key>
	<string>Configuration</string>
	<key>PayloadUUID</key>
	<string>0B6E6F2D-3A43-4E0C-8C55-6C1D1D7E9B10</string>
	<key>PayloadVersion</key>
	<integer>1</integer>
</dict>
</plist>
