# SPDX-License-Identifier: Apache-2.0
# The live script of mray: how it answers, what it asks the renderer for, and that nothing stops it for good. The
# renderer is a stand-in here, which acts on words in the shader; live-pictures.t has the real one.
use strict;
use warnings;
use Cwd 'abs_path';
use File::Path qw(make_path remove_tree);
use File::Temp 'tempdir';
use FindBin;
use lib $FindBin::Bin;
use LiveTest qw(ends shader state until_true);
use ScriptTest qw(get put run);
use Test::More;

my $script = abs_path("$FindBin::Bin/../../installation/mray/bin/live");
my $dir = abs_path(tempdir(CLEANUP => 1));
delete @ENV{grep { /^TAVRN_|^MRAY_/ } keys %ENV};
make_path("$dir/bin");

# Its requests stand in the file "requests". It tells what it was asked with a note.
put("$dir/bin/mray-render", <<'END_PROGRAM' =~ s/DIR/$dir/gr);
#!/usr/bin/perl
use strict;
use warnings;
$| = 1;
sub note_down { open my $file, '>>', 'DIR/requests' or die; print $file "$_[0]\n"; close $file }
sub get { open my $file, '<', $_[0] or return ''; local $/; <$file> // '' }
"@ARGV" eq '--live' or exit 2;
print "ready\n";
while (my $line = <STDIN>) {
	chomp $line;
	note_down($line);
	my ($word, $id, @words) = map { s/%([0-9a-f]{2})/chr hex $1/ger } split / /, $line;
	next if $word ne 'draw';
	my ($shader, $picture) = @words[-2, -1];
	my $text = get($shader);
	print "program $id new\n";
	if ($text =~ /noBlock/ && $text =~ /mrValues/) { print "say $id $shader:1: error: no block\nrefused $id\n"; next }
	if ($text =~ /^(.*)\bwrong/s) {
		my $at = 1 + ($1 =~ tr/\n//);
		print "say $id $shader:$at: error: no good\nsay $id $shader: link it\nsay $id other\nrefused $id\n";
		next;
	}
	if ($text =~ /mute/) { print "refused $id\n"; next }
	if ($text =~ /fails/) { print "failed $id no memory\n"; next }
	if ($text =~ /lasts/) { print "alive $id\n" while !-e 'DIR/enough' && select(undef, undef, undef, 0.1) == 0 }
	if ($text =~ /hangs/) { sleep 1000 }
	if ($text =~ /dies/) { kill 'KILL', $$; sleep 1000 }
	if ($text =~ /stumbles/ && !-e 'DIR/stumbled') { open my $file, '>', 'DIR/stumbled'; exit 7 }
	if ($text =~ /floods/) { print 'x' x 200_000; sleep 1000 }
	if ($text =~ /babbles/) { print "\x00\xff\n\npicture\npicture 9999\ncoarse\n" x 3 }
	print "coarse $id\n";
	if ($text =~ /refines/) {
		my $next = <STDIN>;
		exit 0 if !defined $next;
		chomp $next;
		note_down($next);
		print "dropped $id\n";
		next;
	}
	print "say $id 3 samples are odd\n" if $text =~ /odd/;
	print "times $id compile 1.0, draw 2.0 ms\n" if grep { $_ eq '--timing' } @words;
	open my $file, '>', $picture or die;
	print $file "a picture\n";
	close $file;
	print "picture $id\n";
}
END_PROGRAM
chmod 0755, "$dir/bin/mray-render";
my $path = $ENV{PATH};
$ENV{PATH} = "$dir/bin:$path";

sub live { LiveTest->start("$dir/errors", $^X, $script, @_ ? @_ : 100) }

my $number = 0;
# A new state.
sub made {
	my ($statements, %of) = @_;
	return state("$dir/states/" . ++$number, 'Ball', shader($statements, %of), %{ $of{options} // {} });
}

sub requests {
	my @lines = split /\n/, get("$dir/requests") // '';
	unlink "$dir/requests";
	return @lines;
}

my $live = live();
my $fine = 'tvColor = vec4(0.250000);';

subtest 'a state is answered with its pictures' => sub {
	requests();
	my $state = made($fine);
	is_deeply([$live->asked($state)], ["coarse $state/coarse.png", "picture $state/picture.png"], 'coarse, then fine');
	is(join(' ', requests()), "draw 1 --background studio --exposure 1 --light key --object sphere --samples 4 --size 320,240"
		. " --coarse $state/coarse.png --values $state/live.values -- $state/live.frag $state/picture.png",
		'the renderer is asked once');
	is(join(' ', map { s{.*/}{}r } sort glob "$state/*"),
		'codegenfile hintfile linemap live.frag live.values name picture.png render_options', 'all files are in its directory');
};

subtest 'render options hold' => sub {
	my $state = made($fine, options => { MRAY_SIZE => '64x48', MRAY_OBJECT => 'vase', MRAY_LIGHT => 'rim', MRAY_SAMPLES => 9,
		MRAY_BACKGROUND => 'dark', MRAY_EXPOSURE => '1.5', MRAY_TIMES => 1 });
	requests();
	my @lines = $live->asked($state);
	like((requests())[0], qr/--background dark --exposure 1\.5 --light rim --object vase --samples 9 --size 64,48 .* --timing /,
		'the renderer gets its part');
	like($lines[1], qr/^note Ball: times: filter [\d.]+, compile 1\.0, draw 2\.0 ms, program new$/, 'times are told where they are asked for');
	$live->asked($state = made($fine, options => { MRAY_VIEW => 'normals', MRAY_TINT_G => '0.5' }));
	my $text = get("$state/live.frag");
	like($text, qr/void mrShade\(\)/, 'a view has a main of its own');
	like($text, qr/tvColor\.rgb \*= vec3\(mrValue\[0\]\.w, mrValue\[1\]\.x, mrValue\[1\]\.y\);/, 'and a tint is a value');
	is(get("$state/live.values"), "0.250000 0.5 0.5 1.000000 0.500000 1.000000\n", 'like others');
	my @bad = ([MRAY_SIZE => 'big'], [MRAY_SAMPLES => 3], [MRAY_OBJECT => 'pot'], [MRAY_EXPOSURE => 0], [MRAY_VIEW => 'x'],
		[MRAY_TINT_R => -1], [TAVRN_SHADER_TYPE => 'volume']);
	for my $case (@bad) {
		my ($key, $value) = @$case;
		like(scalar $live->asked(made($fine, options => { $key => $value })),
			$key =~ /TYPE/ ? qr/^error Ball: there is no shader type 'volume'/ : qr/^error \Q$key\E in .* is "\Q$value\E"; it must be /,
			"$key $value is refused");
	}
};

subtest 'states that differ in values have one source' => sub {
	my $statements = sub {
		my ($one, $two, $text) = @_;
		return "float mr_a = $one;\nvec3 mr_v = vec3(1.500000, $two, 0.0);\nmr_a = mr_a -0.75 + mix($two, 2e-3, 1.0) * $one;\n"
			. "const float mr_c = 0.250000; mr_a *= $one;\nfloat mr_l[3] = float[](mr_a, $two, mr_c);\nfor (int i = 0; i < 3; i++) mr_a += mr_l[i];\n"
			. "#define MR_X 0.125000\n/* $one */ tvColor = vec4(mr_v * tint, mr_a * weight * MR_X); // $two\nconst float\n mr_e = 0.5;$text";
	};
	my @arguments = ([weight => 'float', '0.500000'], [tint => 'rgb', 'vec3(0.1, 0.2, 0.3)'], [many => 'generic', 'ivec2(1, 2)'],
		[pair => 'generic', 'vec2(4.0, 5.0)'], [paint => 'rgba', 'vec4(1.000000)'], [code => 'generic', 'vec2(1.0 + 1.0)']);
	my @other = map { [@$_] } @arguments;
	$other[0][2] = '-0.750000';
	$other[1][2] = 'vec3(0.9, -0.8, 0.7)';
	$other[3][2] = 'vec2(-4.0, 0.0)';
	my $first = made($statements->('0.200000', '0.300000', ''), arguments => \@arguments);
	my $second = made($statements->('-7.000000', '-1e-20', ''), arguments => \@other);
	my $third = made($statements->('0.200000', '0.300000', ' mr_a += 1.0;'), arguments => \@arguments);
	$live->asked($_) for $first, $second, $third;
	my $text = get("$first/live.frag");
	is(get("$second/live.frag"), $text, 'the same text');
	isnt(get("$third/live.frag"), $text, 'but another for other statements');
	like($text, qr/^layout\(std140\) uniform mrValues \{\nfloat weight;\nvec3 tint;\nvec2 pair;\nvec4 paint;\nvec4 mrValue\[3\];\n\};\n/m,
		'values stand in a block');
	like($text, qr/^uniform ivec2 many = ivec2\(1, 2\);$/m, 'whole numbers do not');
	like($text, qr/^uniform vec2 code = vec2\(1\.0 \+ 1\.0\);$/m, 'nor what is no number');
	like($text, qr/^uniform vec3 tvEye;/m, 'what the renderer gives stays');
	like($text, qr/mr_a = mr_a -mrValue\[0\]\.w \+ mix\(/, 'a minus between two is none of the number');
	like($text, qr/^    const float mr_c = 0\.250000; mr_a \*= mrValue\[/m, 'constants stay, and what follows them does not');
	like($text, qr/^    const float\n     mr_e = 0\.5;$/m, 'over lines, too');
	like($text, qr/float mr_l\[3\] = float\[\]\(mr_a, mrValue/, 'and sizes');
	like($text, qr/i < 3; i\+\+\) mr_a \+= mr_l\[i\];/, 'and counters');
	like($text, qr/#define MR_X 0\.125000/, 'and macros');
	unlike($text, qr{//|/\*|0\.300000|0\.200000}, 'and no remark tells of a value');
	my @values = split ' ', get("$first/live.values");
	is("@values[0 .. 15]", '0.5 0 0 0 0.1 0.2 0.3 0 4 5 0 0 1 1 1 1', 'the numbers of the arguments are laid out as the block is');
	is("@values[16 .. $#values]", '0.200000 1.500000 0.300000 0.75 0.300000 2e-3 0.200000 0.200000 0.300000', 'then come those of the boxes');
	is((split ' ', get("$second/live.values"))[16], '-7.000000', 'a minus goes with them');
};

subtest 'a module has its values taken out, too' => sub {
	my @states = map {
		made("float mr_a = $_;\ntvColor = vec4(mr_a * weight);", arguments => [[weight => 'float', $_]],
			options => { TAVRN_SHADER_TYPE => 'module' })
	} '0.250000', '-3.000000';
	$live->asked($_) for @states;
	my $text = get("$states[0]/live.frag");
	like($text, qr/vec4 Ball\(\s+float weight\s+\)\n\{/, 'it is a function');
	like($text, qr/tvColor = Ball\(mrValue\[0\]\.y\);/, 'which is called with its values');
	is(get("$states[1]/live.frag"), $text, 'so that others have the same text');
	is(get("$states[1]/live.values"), "-3.000000 -3.000000\n", 'and other numbers');
};

subtest 'there is room for so many values' => sub {
	my $state = made(join "\n", map { "tvColor.r += $_.500000;" } 1 .. 5000);
	is(scalar $live->asked($state), "picture $state/picture.png", 'a large one');
	is(scalar(() = get("$state/live.values") =~ /\S+/g), 4096, 'has as many as every driver has room for');
	like(get("$state/live.frag"), qr/tvColor\.r \+= 4097\.500000;/, 'and the others where they were');
};

subtest 'a source that is not taken without its values' => sub {
	requests();
	my $state = made("$fine noBlock;");
	is((scalar $live->asked($state)), "picture $state/picture.png", 'is drawn with them');
	is(scalar requests(), 2, 'by a second request');
	like(get("$state/live.frag"), qr{^// Shader Ball\n.*0\.250000}ms, 'which is for the source that a render has');
	$live->asked(made('tvColor = vec4(0.750000); noBlock;'));
	my @asked = requests();
	is(scalar @asked, 1, 'the next time it is so at once');
	unlike($asked[0], qr/--values/, 'without numbers');
	my $odd = made("tvColor = vec4(0.250000 \\\n + 0.5);");
	$live->asked($odd);
	like(get("$odd/live.frag"), qr{vec4\(0\.250000 \\\n}m, 'lines that go on stay together');
	requests();
};

subtest 'errors name the box' => sub {
	my $state = made("tvColor = vec4(0.500000);\n\n// Marble_2\ntvColor = wrong;");
	my @lines = $live->asked($state);
	my @text = split /\n/, get("$state/live.frag");
	my ($at) = grep { $text[$_ - 1] =~ /wrong/ } 1 .. @text;
	is($lines[-1], "error Ball: line $at (box Marble_2, operator Marble, /operators/Marble line 1): error: no good", 'and the line that a render has');
	is_deeply([@lines[0 .. $#lines - 1]], ['note other', 'note other', 'note Ball: link it', 'note other'], 'the rest are notes');
	like(scalar $live->asked(made('mute')), qr/^error Ball: the driver refuses the shader$/, 'or that there is none to name');
	is(scalar $live->asked(made('fails')), 'error Ball: mray-render: no memory', 'what else the renderer says is told');
	like(scalar $live->asked(made($fine, arguments => [['sin', 'float', '1.0']])),
		qr/^error Ball: box Ball_7, button sin: an argument cannot be named 'sin'/, 'so is what the filter says');
	my @warned = $live->asked(made($fine, arguments => [['Ks', 'float', '1.0'], ['Ks', 'float', '2.0']]));
	like($warned[0], qr/^note Ball: warning: argument 'Ks'/, 'and what it warns of');
	like($warned[-1], qr/^picture /, 'which is no error');
	like(scalar $live->asked(made("#include \"/etc/passwd\"")), qr/^error Ball: .*#include is refused/, 'no other files are read');
	is(($live->asked(made('odd')))[1], 'note 3 samples are odd', 'remarks of the renderer are passed on');
};

subtest 'an older state is dropped' => sub {
	requests();
	my ($older, $newer) = (made('refines'), made($fine));
	$live->say($older);
	is($live->line, "coarse $older/coarse.png", 'it is being refined');
	$live->say($newer);
	is_deeply([$live->answer], ['dropped'], 'when a newer one comes');
	is_deeply([$live->answer], ["coarse $newer/coarse.png", "picture $newer/picture.png"], 'which is drawn');
	my @asked = requests();
	is($asked[1], 'stop', 'the renderer was told at once');
	my @states = map { made($fine) } 1 .. 4;
	$live->say(@states);
	my @answers = map { [$live->answer] } 1 .. 4;
	is($answers[3][-1], "picture $states[3]/picture.png", 'of many the last is drawn');
	is(scalar(grep { @$_ == 1 && $_->[0] eq 'dropped' } @answers), 4 - scalar(grep { @$_ > 1 } @answers), 'each is answered');
	ok(!-e "$states[1]/live.frag" || !-e "$states[2]/live.frag", 'nothing is done about those that came between');
};

subtest 'states that are none' => sub {
	my $good = shader($fine);
	like(scalar $live->asked("$dir/nowhere"), qr{^error cannot read \Q$dir\E/nowhere/name: No such file}, 'no directory');
	like(scalar $live->asked(''), qr/^error cannot read/, 'an empty line');
	like(scalar $live->asked("\x01\xff" x 100), qr/^error cannot read [^\x00-\x1f]*\z/, 'noise');
	my $state = state("$dir/states/cut", 'Ball', undef);
	like(scalar $live->asked($state), qr{^error cannot read .*/codegenfile: No such file}, 'no source');
	make_path("$state/codegenfile");
	like(scalar $live->asked($state), qr{^error cannot read .*/codegenfile: it is no file}, 'a directory in its place');
	remove_tree("$state/codegenfile");
	my $end = index($good, 'EndArginfo');
	for my $at (0, 1, 10, 20, $end - 1, $end + 5) {
		put("$state/codegenfile", substr $good, 0, $at);
		like(scalar $live->asked($state), qr/^error Ball: .*arginfo section/, "a source cut after $at bytes");
	}
	put("$state/codegenfile", join '', map { chr(($_ * 7919) % 256) } 1 .. 5000);
	like(scalar $live->asked($state), qr/^error Ball: [ -~]+\z/, 'binary noise');
	put("$state/codegenfile", $good);
	put("$state/render_options", join '', map { chr(($_ * 7919) % 256) } 1 .. 5000);
	like(scalar $live->asked($state), qr/^picture/, 'options that are noise are none');
	unlink "$state/render_options";
	like(scalar $live->asked($state), qr{^error cannot read the render options .*/render_options: No such file}, 'options that are not there');
	put("$state/render_options", '');
	unlink "$state/name";
	like(scalar $live->asked($state), qr{^error cannot read .*/name: No such file}, 'no name');
	put("$state/name", "odd\x07 name\nmore\n");
	put("$state/codegenfile", '');
	like(scalar $live->asked($state), qr{^error odd name more: the arginfo section ends early}, 'an odd one stays on its line');
	my $large = made(join '', map { "tvColor.r += $_.500000 * tvUV.x + sin(tvObject.y * 3.5);\n" } 1 .. 160_000);
	cmp_ok(-s "$large/codegenfile", '>', 10_000_000, 'ten megabytes of source');
	is(scalar $live->asked($large), "picture $large/picture.png", 'are a shader like others');
	remove_tree($large);
	truncate "$state/codegenfile", 65 << 20 or die;
	like(scalar $live->asked($state), qr/^error .* is larger than 64 MB$/, 'more than sixty-four are none');
	chmod 0555, $state;
	SKIP: {
		skip 'root may write everywhere', 1 if -w $state;
		put("$state/codegenfile", $good);
		like(scalar $live->asked($state), qr{^error Ball: cannot write .*/live\.frag: }, 'a directory that cannot be written');
	}
	chmod 0755, $state;
};

subtest 'the renderer ends' => sub {
	my $before = $live->child;
	kill 'KILL', $before;
	ok(ends($before), 'killed while nothing is drawn');
	like(scalar $live->asked(made($fine)), qr/^picture/, 'there is another one');
	like(scalar $live->asked(made('stumbles')), qr/^picture/, 'one that ends while it draws is asked again');
	is(scalar $live->asked(made('dies')), 'error Ball: mray-render broke down (signal 9)', 'but only once');
	like(scalar $live->asked(made($fine)), qr/^picture/, 'the next state is drawn');
	is(scalar $live->asked(made('floods')), 'error Ball: mray-render broke down (signal 9)', 'one that floods is ended');
	is_deeply([map { s{ /.*}{}r } $live->asked(made('babbles'))], ['coarse', 'picture'], 'nonsense is left alone');
	is(scalar $live->children, 1, 'there is one renderer');
	{
		local $ENV{PATH} = "$dir/empty";
		my $lonely = live();
		like(scalar $lonely->asked(made($fine)), qr/^error Ball: there is no mray-render on PATH/, 'one that is not there is told');
		is($lonely->finish, 0, 'and nothing else');
	}
};

subtest 'a renderer that hangs' => sub {
	my $hurried = live(10);
	my $state = made('hangs');
	my $child = $hurried->child;
	is(scalar $hurried->asked($state), 'error Ball: the picture was given up: mray-render said nothing for 10 seconds; '
		. 'a loop of the shader may have no end', 'is given up');
	ok(ends($child), 'and ended');
	like(scalar $hurried->asked(made($fine)), qr/^picture/, 'the next one draws');
	is($hurried->finish, 0, 'the script ends with its input');
};

subtest 'a renderer that takes long' => sub {
	my $state = made('lasts');
	$live->say($state);
	is($live->line, 'note Ball: the driver is still at work on the shader', 'is waited for, and that is told');
	is($live->line, 'note Ball: the driver is still at work on the shader', 'again and again');
	put("$dir/enough", '');
	is(($live->answer)[-1], "picture $state/picture.png", 'until there is a picture');
	unlink "$dir/enough";
	my $hurried = live(1);
	like(scalar $hurried->asked(made('lasts')), qr/^error Ball: the picture was given up: mray-render /, 'but not for ever');
	is($hurried->finish, 0, 'the script goes on');
};

subtest 'the input ends' => sub {
	my $child = $live->child;
	is($live->finish, 0, 'between states');
	ok(ends($child), 'the renderer ends with it');
	for my $case (['hangs', 'while the renderer hangs'], ['refines', 'while it refines']) {
		my ($word, $when) = @$case;
		my $other = live();
		$other->say(made($word));
		ok(until_true(sub { $other->children && (get("$dir/requests") // '') =~ /draw/ }), 'a state is drawn');
		my @children = $other->children;
		is($other->finish, 0, "it ends $when");
		ok(ends(@children), 'and nothing stays');
		requests();
	}
	my $cut = live();
	syswrite $cut->{to}, "$dir/sta";
	is($cut->finish, 0, 'in a line');
	is($cut->line, undef, 'which is no state');
	my $long = live();
	$long->say('x' x 70_000);
	is($long->finish, 0, 'a line that is too long');
	is($long->line, undef, 'is its end');
	like(get("$dir/errors"), qr/^live: a line is longer than 65536 bytes$/m, 'which is told');
	my $stopped = live();
	my @children = $stopped->child;
	kill 'TERM', $stopped->{pid};
	is($stopped->finish, 1, 'one that is stopped ends');
	ok(ends(@children), 'with its renderer');
};

subtest 'bad calls' => sub {
	for my $words (['x'], [0], [1, 2], [-1], ['']) {
		my ($status, $out, $err) = run($^X, $script, @$words);
		is($status, 2, "refused: @$words");
		like($err, qr/^usage: live \[SECONDS\]$/, 'usage');
	}
};

done_testing;
