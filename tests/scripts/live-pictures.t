# SPDX-License-Identifier: Apache-2.0
# Live pictures of mray by the renderer itself: they show what a render shows, a changed value compiles nothing, and
# nothing grows. live.t has the script's part.
use strict;
use warnings;
use Cwd 'abs_path';
use File::Copy 'copy';
use File::Path qw(make_path remove_tree);
use File::Temp 'tempdir';
use FindBin;
use lib $FindBin::Bin;
use LiveTest qw(ends shader state until_true);
use PictureTest qw(difference picture);
use ScriptTest qw(get put run);
use Test::More;

my ($batch, $renderer) = @ENV{qw(TAVRIN_BATCH MRAY_RENDER)};
plan skip_all => 'TAVRIN_BATCH and MRAY_RENDER do not name the programs' if !defined $batch || !defined $renderer;
my $library = abs_path("$FindBin::Bin/../../installation/mray");
my $dir = abs_path(tempdir(CLEANUP => 1));
delete @ENV{grep { /^TAVRN_|^MRAY_/ } keys %ENV};
$ENV{PATH} = "$renderer:$ENV{PATH}";
# A build that watches its memory keeps what was freed for a while, which is not to look like growth.
$ENV{ASAN_OPTIONS} = join ':', grep { defined } $ENV{ASAN_OPTIONS}, 'quarantine_size_mb=4';

my $live = LiveTest->start("$dir/errors", $^X, "$library/bin/live", 100);

# The picture of a state, and whether a shader was compiled for it.
sub seen {
	my ($state, $what) = @_;
	my @lines = $live->asked($state);
	my ($program) = map { /^note .* program (\w+)$/ } @lines;
	is($lines[-1], "picture $state/picture.png", "$what: there is a picture");
	return (get("$state/picture.png") // '', $program);
}

# The picture that a render makes of a state.
sub rendered {
	my ($state) = @_;
	local $ENV{TAVRN_RENOPTS} = "$state/render_options";
	local $ENV{TAVRN_WORKDIR} = $state;
	local $ENV{MRAY_VIEWER} = '';
	system("$^X $library/bin/codefilter Shown $state/Shown <$state/codegenfile 2>>$dir/errors") == 0 or return '';
	my ($status) = run($^X, "$library/bin/renderit", 'Shown', 0);
	return $status == 0 ? get("$state/0/Shown.png") : '';
}

# What is left of a difference where numbers are computed in another order.
sub is_same {
	my ($one, $other, $what) = @_;
	my ($most, $mean) = $one ne '' && $other ne '' ? difference($one, $other) : ();
	ok(defined $mean && $mean < 0.05, "$what: as a render shows it") or diag "most $most, mean $mean" x defined $mean;
}

# Other values in the place of those of a generated source.
sub changed {
	my ($code) = @_;
	my ($head, $main) = $code =~ /\A(.*?)(^void main.*)\z/ms;
	$head =~ s/^(    (?:float|rgb|xyz|rgba) .*)$/$1 =~ s{(\d+\.\d+)}{sprintf '%f', $1 * 0.85}ger/gme;
	$main =~ s/(\d+\.\d{6})/sprintf '%f', $1 * 0.9/ge;
	return $head . $main;
}

my $number = 0;
sub compare {
	my ($work, $what) = @_;
	my $code = get("$work/codegenfile");
	my $options = get("$work/render_options") =~ s/MRAY_TIMES "0"/MRAY_TIMES "1"/r;
	my @texts = ($code, changed($code));
	for my $i (0, 1) {
		my $state = state("$dir/states/" . ++$number, 'Shown', $texts[$i]);
		put("$state/render_options", $options);
		my ($picture, $program) = seen($state, $what);
		is_same($picture, rendered($state), $i ? "$what, changed" : $what);
		is($program, 'kept', "$what: a changed value compiles nothing") if $i;
		unlike(get("$state/live.frag"), qr/\d\.\d{6}(?!\d)/, "$what: all values are taken out") if !$i;
		remove_tree($state);
	}
}

my @small = ('--quiet', '--set', 'MRAY_SIZE=48,36', '--set', 'MRAY_SAMPLES=1');

subtest 'examples' => sub {
	for my $path (glob "$library/../../examples/*.tvn") {
		my ($name) = $path =~ m{([^/]+)\.tvn$};
		is((run($batch, @small, '--save-shader', '--keep-work', "$dir/$name", $path))[0], 0, "$name generates");
		compare("$dir/$name", $name);
	}
};

subtest 'operators' => sub {
	my (undef, $out) = run($batch, '--list-operators');
	for my $line (split /\n/, $out) {
		my ($name, undef, $file) = split /\t/, $line;
		next if get($file) =~ /^tavrn-version/m;
		# Buttons that there can be any number of are told by the document.
		my ($many) = get($file) =~ /^vinput (\w+)/m;
		my $buttons = defined $many ? join '', map { "opbutton.vinput $many $many$_ { opbuttondefs { currentcast rgba\n wwms {\n}\n}\n}\n" } 1, 2 : '';
		my $wire = get($file) =~ /^output /m ? "opbox:$name,1,x,0 -> opbox:Surface,2,x,0\n" : '';
		my $other = $name eq 'Surface' ? '' : "opbox {\nfilename Surface\nwid 2\nxypos 0 0\n}\n";
		put("$dir/one.tvn", "tavrn-version 1\ntavrn-renderer mray\nopdesk {\nopbox {\nfilename $name\nwid 1\nxypos 0 0\n$buttons}\n"
			. "${other}opconnects {\n$wire}\n}\n");
		my ($status, undef, $err) = run($batch, @small, '--save-shader', '--keep-work', "$dir/$name", "$dir/one.tvn");
		is($status, 0, "$name generates") or diag $err;
		compare("$dir/$name", $name);
	}
};

my %options = (MRAY_SIZE => '40,30', MRAY_SAMPLES => 1, MRAY_TIMES => 1);
my $lit = 'tvColor = vec4(tvLambert(normalize(tvNormal), tvPosition) * %s, 1.0);';

subtest 'options' => sub {
	my $program;
	for my $case ({ MRAY_OBJECT => 'torus' }, { MRAY_BACKGROUND => 'dark' }, { MRAY_LIGHT => 'sun' }, { MRAY_EXPOSURE => '2' },
			{ MRAY_SAMPLES => 9 }, { MRAY_SIZE => '64,20' }, { MRAY_VIEW => 'clay' }, { MRAY_VIEW => 'alpha' },
			{ MRAY_TINT_R => '0.2' }, { TAVRN_SHADER_TYPE => 'module' }) {
		my $state = state("$dir/states/" . ++$number, 'Shown', shader(sprintf $lit, '0.700000'), %options, %$case);
		my ($picture) = seen($state, "@{[%$case]}");
		is_same($picture, rendered($state), "@{[%$case]}");
	}
	for my $tint ('0.4', '0.7') {
		my $state = state("$dir/states/" . ++$number, 'Shown', shader(sprintf $lit, '0.700000'), %options, MRAY_TINT_R => $tint);
		(undef, $program) = seen($state, "tint $tint");
	}
	is($program, 'kept', 'another tint compiles nothing');
	my $state = state("$dir/states/" . ++$number, 'Shown', shader(sprintf($lit, '0.700000') . ' tvColor.r += 0.1;'), %options);
	is((seen($state, 'another network'))[1], 'new', 'another statement does');
};

subtest 'a large picture' => sub {
	my $code = shader(sprintf($lit, '0.700000') . "\nfor (int i = 0; i < 40; i++) tvColor.r += 0.001 * sin(float(i) + tvUV.x);");
	my %large = (%options, MRAY_SIZE => '1600,1200', MRAY_SAMPLES => 16);
	my ($older, $newer) = map { state("$dir/states/" . ++$number, 'Shown', $code, %large) } 1, 2;
	$live->say($older);
	is($live->line, "coarse $older/coarse.png", 'is seen coarse first');
	my ($width, $height, $rows) = picture(get("$older/coarse.png"));
	is("$width $height " . @$rows, '1600 1200 1200', 'in its full size');
	$live->say($newer);
	is(($live->answer)[-1], 'dropped', 'and left where a newer one comes');
	ok(!-e "$older/picture.png", 'before it is fine');
	is(($live->answer)[-1], "picture $newer/picture.png", 'that one is drawn to its end');
	my ($most, $mean) = difference(get("$newer/coarse.png"), get("$newer/picture.png"));
	cmp_ok($mean, '<', 8, 'and looked like that before');
	remove_tree($_) for $older, $newer;
};

subtest 'what the driver refuses' => sub {
	my $state = state("$dir/states/" . ++$number, 'Shown', shader("tvColor = vec4(oops * 0.500000);\n\n// Wood_2\ntvColor.r = vec2(1.0);"), %options);
	my @lines = $live->asked($state);
	like($lines[-1], qr/^error Shown: line \d+ \(box Ball_1, operator Ball, \S+ line \d+\): .*oops/, 'names the box');
	like(join("\n", @lines), qr/^note Shown: line \d+ \(box Wood_2, operator Wood, \S+ line \d+\): /m, 'each of them');
	like((seen(state("$dir/states/" . ++$number, 'Shown', shader('const float mr_a = 0.5; tvColor = vec4(mr_a * 0.250000);'), %options), 'constants'))[1],
		qr/new/, 'while this is none');
};

# The memory of a process in kilobytes, and its descriptors.
sub size_of {
	my ($pid) = @_;
	my ($memory) = get("/proc/$pid/status") =~ /^VmRSS:\s+(\d+)/m;
	my @files = glob "/proc/$pid/fd/*";
	return ($memory, scalar @files);
}

subtest 'five hundred states' => sub {
	my $child = $live->child;
	my @pids = ($live->{pid}, $child);
	my ($pictures, @before) = (0);
	# Values change; every tenth time the network, which comes back in time.
	for my $i (1 .. 500) {
		my $state = state("$dir/live/$i", 'Shown', shader(sprintf($lit, sprintf '%f', $i / 500) . "\ntvColor.g += 0.01;" x (int($i / 10) % 25)), %options);
		$pictures++ if $live->asked($state) eq "picture $state/picture.png";
		remove_tree($state);
		@before = map { [size_of($_)] } @pids if $i == 260;
	}
	is($pictures, 500, 'have their pictures');
	is($live->child, $child, 'from one renderer');
	my @after = map { [size_of($_)] } @pids;
	for my $i (0, 1) {
		my $who = $i ? 'the renderer' : 'the script';
		is($after[$i][1], $before[$i][1], "$who opens no more files");
		cmp_ok($after[$i][0], '<', $before[$i][0] + 16_000, "$who takes no more memory");
	}
	is_deeply([glob "$dir/live/*"], [], 'no files are left');
};

subtest 'no process is left' => sub {
	my @children = $live->child;
	is($live->finish, 0, 'at the end');
	ok(ends(@children), 'of the input');
	my $other = LiveTest->start("$dir/errors", $^X, "$library/bin/live");
	@children = $other->child;
	kill 'KILL', $other->{pid};
	waitpid $other->{pid}, 0;
	ok(ends(@children), 'of the script');
};
is(get("$dir/errors"), '', 'nothing else was said');

done_testing;
